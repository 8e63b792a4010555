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

}  // namespace

std::string WhyUnusable(const BroadSoftConfigItem& source) {
  const std::string_view server = source.server;
  const std::size_t scheme = server.find("://");
  const std::size_t start = scheme == server.npos ? 0 : scheme + 3;
  const std::size_t end = std::min(server.find('/', start), server.size());
  const std::string refusal = WhyUnusableField(source, server.substr(start, end - start));
  if (!refusal.empty()) return refusal;
  if (!source.port.empty() && !WholeNumber(source.port, 1, kLastPort)) {
    return "the port must be a number from 1 to 65535, not \"" + Printable(source.port) + "\"";
  }
  const std::string port = source.port.empty() ? "" : ":" + source.port;
  const std::string url = std::string(source.server).insert(end, port);
  if (!server.empty() && !SplitUrl((start == 0 ? "http://" : "") + url)) {
    return "nothing can be fetched from \"" + Printable(source.server + port) + "\"";
  }
  return {};
}

}  // namespace desk
