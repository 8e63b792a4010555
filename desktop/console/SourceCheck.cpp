// What may not stand in a field, since the URL would end the field there or its file would lose it.
#include "desktop/console/SourceCheck.h"

#include <utf8proc.h>

#include <charconv>
#include <vector>

#include "desktop/platform/Text.h"
#include "desktop/platform/TransferUrl.h"

namespace desk {
namespace {

constexpr std::string_view kSchemeEnd = "://";

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
    utf8proc_int32_t letter = 0;
    const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto size = static_cast<utf8proc_ssize_t>(text.size());
    const utf8proc_ssize_t length = utf8proc_iterate(bytes, size, &letter);
    if (length <= 0) return text.substr(0, 1);
    const bool blank = letter == '\t' || letter == '\n' || letter == '\r';
    const auto step = static_cast<std::size_t>(length);
    if ((letter < ' ' && !blank) || letter == 0xFFFE || letter == 0xFFFF) {
      return text.substr(0, step);
    }
    text.remove_prefix(step);
  }
  return {};
}

// The server with the port where the module puts it.
struct Address {
  std::string scheme = "http";
  std::string host;
  std::string path;

  explicit Address(const std::string& server) {
    const std::size_t schemeEnd = server.find(kSchemeEnd);
    const std::size_t start = schemeEnd == server.npos ? 0 : schemeEnd + kSchemeEnd.size();
    if (schemeEnd != server.npos) scheme = server.substr(0, schemeEnd);
    host = server.substr(start, server.find('/', start) - start);
    path = server.substr(start + host.size());
  }
};

bool IsPort(const std::string& text) {
  constexpr int kLast = 65535;
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && number >= 1 && number <= kLast;
}

}  // namespace

std::string WhyUnusable(const BroadSoftConfigItem& source) {
  const Address address(source.server);
  const struct {
    const char* what;
    std::string_view text;
    std::vector<std::string_view> refused;
  } kFields[] = {
      {"name", source.name, {}},
      {"user", source.user_name, {"/", ":", kNameQuery}},
      {"password", source.password, {"/", kNameQuery}},
      {"server's host", address.host, {"@", "?", " ", "\t", "\n", "\r", "\x7F"}},
      {"server", source.server, {"#", "\t", "\n", "\r", "\x7F"}},
  };
  for (const auto& field : kFields) {
    std::string_view found = FirstOf(field.refused, field.text);
    if (found.empty()) found = FirstNoText(field.text);
    if (!found.empty()) return Format("a %s cannot hold \"", field.what) + Printable(found) + "\"";
  }
  if (!source.port.empty() && !IsPort(source.port)) {
    return "the port must be a number from 1 to 65535, not \"" + Printable(source.port) + "\"";
  }
  const std::string port = source.port.empty() ? "" : ":" + source.port;
  const std::string url = address.scheme + "://" + address.host + port + address.path;
  if (!source.server.empty() && !SplitUrl(url)) {
    return "nothing can be fetched from \"" + Printable(source.server + port) + "\"";
  }
  return {};
}

}  // namespace desk
