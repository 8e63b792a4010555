// The key-pad form of names: the keys that a user presses to type one, a key per letter.
// Finding a name by it is the caller's.
#pragma once

#include <string>
#include <string_view>

namespace desk {

// `name` on the keys of ITU E.161 ("Anna" gives "2662"), further Latin, Greek and Cyrillic letters
// placed after ETSI ES 202 130. Digits, "*", "#" and "+" stand for themselves. Whatever has no key
// is left out: blanks, punctuation, other scripts, malformed UTF-8.
std::string ToKeyString(std::string_view name);

}  // namespace desk
