// Comparison of names with what a user types: letter case and accents make no difference.
// Also the reading of UTF-8 into characters, which the key-pad form of names (KeyPad.h) shares.
#pragma once

#include <string>
#include <string_view>

namespace desk {

// `text` in the form in which keys and names are compared: lower case, without accents, letters
// such as "ł" or "ß" in basic Latin ones ("l", "ss"). Folding twice changes nothing more. Bytes
// that are not UTF-8 stay as they are.
std::string FoldText(std::string_view text);

// True when `text` begins with `key`, both compared in the folded form. An empty key begins every
// text.
bool BeginsWith(std::string_view text, std::string_view key);

// A byte that is not part of well-formed UTF-8 is read as the character kMalformed + byte, beyond
// all of Unicode: it is like nothing but itself.
inline constexpr char32_t kMalformed = 0x110000;

// The characters of `text`, decomposed: accents follow their letters, ligatures and full-width
// forms are resolved into the letters they stand for.
std::u32string ReadCharacters(std::string_view text);

// The folded form of one such character: nothing for an accent, one or two letters otherwise.
std::u32string FoldCharacter(char32_t character);

}  // namespace desk
