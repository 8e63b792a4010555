// What may not stand in a field, since the URL would end the field there or its file would lose it.
#include "desktop/console/SourceCheck.h"

#include <algorithm>
#include <vector>

#include "desktop/platform/Text.h"
#include "desktop/platform/WholeNumber.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {
namespace {

constexpr int kLastPort = 65535;

// The first that stands in the text; empty when there is none.
std::string_view FirstOf(const std::vector<std::string_view>& parts, std::string_view text) {
  for (const std::string_view part : parts) {
    if (text.find(part) != text.npos) return part;
  }
  return {};
}

// The first bytes that XML cannot hold; empty when there are none.
std::string_view FirstNoText(std::string_view text) {
  while (!text.empty()) {
    const Character letter = TakeCharacter(&text);
    const bool blank = letter.code == '\t' || letter.code == '\n' || letter.code == '\r';
    if ((letter.code < ' ' && !blank) || letter.code == 0xFFFE || letter.code == 0xFFFF) {
      return letter.bytes;
    }
  }
  return {};
}

// Why not a field; empty when all of them can be used.
std::string WhyUnusableField(const BroadSoftConfigItem& source, std::string_view host) {
  const struct {
    const char* what;
    std::string_view text;
    std::vector<std::string_view> refused;
  } kFields[] = {
      {"name", source.name, {}},
      {"user", source.user_name, {"/", ":", kNameQuery}},
      {"password", source.password, {"/", kNameQuery}},
      {"server's host", host, {"@", "?", " ", "\t", "\n", "\r", "\x7F"}},
      {"server", source.server, {"#", "\t", "\n", "\r", "\x7F"}},
  };
  for (const auto& field : kFields) {
    std::string_view found = FirstOf(field.refused, field.text);
    if (found.empty()) found = FirstNoText(field.text);
    if (!found.empty()) return Format("a %s cannot hold \"", field.what) + Printable(found) + "\"";
  }
  return {};
}

// What a server is made of: a scheme with "://", a host, a path.
struct ServerParts {
  explicit ServerParts(std::string_view server) {
    const std::size_t end = server.find("://");
    const std::size_t start = end == server.npos ? 0 : end + 3;
    const std::size_t pathStart = std::min(server.find('/', start), server.size());
    scheme = server.substr(0, start);
    host = server.substr(start, pathStart - start);
    path = server.substr(pathStart);
  }

  std::string_view scheme, host, path;
};

std::string PortPart(const BroadSoftConfigItem& source) {
  return source.port.empty() ? "" : ":" + source.port;
}

}  // namespace

std::string SourceUrl(const BroadSoftConfigItem& source) {
  if (source.server.empty()) return {};
  const ServerParts server(source.server);
  std::string url(server.scheme.empty() ? "http://" : server.scheme);
  if (!source.user_name.empty()) url += source.user_name + ":" + source.password + "@";
  return url.append(server.host).append(PortPart(source)).append(server.path);
}

std::string WhyUnusable(const BroadSoftConfigItem& source) {
  const std::string refusal = WhyUnusableField(source, ServerParts(source.server).host);
  if (!refusal.empty()) return refusal;
  if (!source.port.empty() && !WholeNumber(source.port, 1, kLastPort)) {
    return "the port must be a number from 1 to 65535, not \"" + Printable(source.port) + "\"";
  }
  if (!source.server.empty() && !SplitUrl(SourceUrl(source))) {
    return "nothing can be fetched from \"" + Printable(source.server + PortPart(source)) + "\"";
  }
  return {};
}

}  // namespace desk
