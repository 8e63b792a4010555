// Credentials are cut off by hand, since nobody has escaped them; the rest is libcurl's parser's.
#include "desktop/platform/transfer/TransferUrl.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace desk {
namespace {

constexpr std::string_view kSchemeEnd = "://";

// What stands at the start of `rest`, which follows "://", before a path or a query.
std::string_view Authority(std::string_view rest) {
  return rest.substr(0, std::min(rest.find('/'), rest.find(kNameQuery)));
}

// A text of libcurl's, freed; empty when there is none.
std::string Owned(char* text) {
  const std::unique_ptr<char, decltype(&curl_free)> owned(text, curl_free);
  return text != nullptr ? text : "";
}

// `url` as it is sent; empty when it makes no sense.
std::string Escaped(const std::string& url) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), curl_url_cleanup);
  constexpr unsigned int kLenient = CURLU_ALLOW_SPACE | CURLU_URLENCODE;
  if (curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), kLenient) != CURLUE_OK) return {};
  char* text = nullptr;
  if (curl_url_get(parsed.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) return {};
  return Owned(text);
}

// Where the credentials at the start of `rest`, which follows "://", end. Nobody has escaped them:
// they can hold what looks like a host, a path or another URL. So they reach to the last "@" of
// all, but for those where a path repeats the user, as in "/user/anna@example.org/".
std::size_t CredentialsEnd(std::string_view rest) {
  const std::size_t colon = rest.find(':');
  const std::string repeated = "/" + std::string(rest.substr(0, colon)) + "/";
  std::size_t at = rest.rfind('@');
  for (;;) {
    const std::size_t again = rest.rfind(repeated, at);
    if (again == rest.npos || at >= again + repeated.size()) break;
    at = rest.rfind('@', again);
  }
  return at < colon ? rest.rfind('@') : at;
}

}  // namespace

std::optional<TransferUrl> SplitUrl(std::string_view url) {
  const std::size_t schemeEnd = url.find(kSchemeEnd);
  if (schemeEnd == url.npos) return {};
  const std::size_t start = schemeEnd + kSchemeEnd.size();
  const std::string_view authority = Authority(url.substr(start));
  const std::size_t at = authority.rfind('@');
  const std::string_view credentials = authority.substr(0, at == url.npos ? 0 : at);
  const std::string_view host = authority.substr(at + 1);  // all of it when there is no "@"
  if (host.empty()) return {};  // the parser would take the path's first part for it

  const std::size_t colon = std::min(credentials.find(':'), credentials.size());
  const std::string_view path = url.substr(start + authority.size());
  const std::string plain = std::string(url.substr(0, start)).append(host).append(path);
  TransferUrl split = {Escaped(plain), std::string(credentials.substr(0, colon)),
                       std::string(credentials.substr(std::min(colon + 1, credentials.size())))};
  const bool isWeb = split.address.rfind("http", 0) == 0;  // no other scheme begins like this
  return isWeb ? std::optional(split) : std::nullopt;
}

std::string MaskCredentials(std::string_view text) {
  const std::size_t scheme = text.find(kSchemeEnd);
  if (scheme == text.npos) return std::string(text);
  const std::size_t start = scheme + kSchemeEnd.size();
  const std::size_t end = CredentialsEnd(text.substr(start));
  if (end == text.npos) return std::string(text);
  return std::string(text.substr(0, start)).append("***").append(text.substr(start + end));
}

std::string EscapeQuery(const std::string& text) {
  return Owned(curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size())));
}

std::string UnescapeQuery(const std::string& text) {
  return Owned(curl_easy_unescape(nullptr, text.data(), static_cast<int>(text.size()), nullptr));
}

}  // namespace desk
