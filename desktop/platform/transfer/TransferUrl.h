// The URL of a network file transfer: its credentials, which nobody has escaped, apart from what is
// sent. How they are used is Transfer.h's business.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace desk {

// What begins a query for a name.
inline constexpr std::string_view kNameQuery = "?name=";

struct TransferUrl {
  std::string address;  // without credentials; blanks and bytes beyond ASCII escaped
  std::string user;
  std::string password;
};

// The authority ends at the first "/" or "?name=", the credentials at the last "@" in it, the user
// at the first ":". Nothing for a URL that is neither http nor https or makes no sense.
std::optional<TransferUrl> SplitUrl(std::string_view url);

// `text` with "***" for the user and password of a URL in it, and for whatever might belong to
// them: where that cannot be told, up to the last "@" of the text.
std::string MaskCredentials(std::string_view text);

// `text` as it can stand in a query: it arrives at the server as it is, whatever it holds.
std::string EscapeQuery(const std::string& text);
// Up to its first NUL.
std::string UnescapeQuery(const std::string& text);

}  // namespace desk
