// Folding over utf8proc's Unicode tables; only the letters that Unicode does not decompose, though
// users type basic Latin letters for them, have a table here.
#include "desktop/platform/contacts/TextMatch.h"

#include <utf8proc.h>

#include <array>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

struct Expansion {
  std::u32string_view letters;
  std::u32string_view basic;
};

constexpr Expansion kExpansions[] = {
    {U"æ", U"ae"},   {U"œ", U"oe"},      {U"þ", U"th"},   {U"ƕ", U"hv"},     {U"ȣ", U"ou"},
    {U"ɐɑɒⱥ", U"a"}, {U"ƀƃɓ", U"b"},     {U"ƈȼɕ", U"c"},  {U"đðɖɗƌȡ", U"d"}, {U"əǝɛɇ", U"e"},
    {U"ƒ", U"f"},    {U"ǥɠɣɡƣ", U"g"},   {U"ħɦⱨ", U"h"},  {U"ıɨɩɪ", U"i"},   {U"ɉɟȷ", U"j"},
    {U"ƙⱪ", U"k"},   {U"łƚɫɬɭȴⱡ", U"l"}, {U"ɱ", U"m"},    {U"ŋɲɳƞȵ", U"n"},  {U"øɔɵ", U"o"},
    {U"ƥᵽ", U"p"},   {U"ĸɋ", U"q"},      {U"ɍɽɾʀ", U"r"}, {U"ʃʂȿƨ", U"s"},   {U"ŧƭʈƫȶⱦ", U"t"},
    {U"ʉʊɯ", U"u"},  {U"ʋʌ", U"v"},      {U"ƿⱳ", U"w"},   {U"ƴɏȝ", U"y"},    {U"ƶȥʒʐʑⱬɀ", U"z"},
};

constexpr bool IsAsciiCharacter(char32_t c) { return c < 0x80; }
constexpr char32_t AsciiToLower(char32_t c) { return c >= U'A' && c <= U'Z' ? c - U'A' + U'a' : c; }
constexpr char32_t ToByte(char c) { return static_cast<unsigned char>(c); }

// Marks across, attached to, above or below a letter. Marks of the combining classes between are no
// accents: without the vowel and voicing marks of Asian scripts a name would be another.
bool IsAccent(char32_t c) {
  constexpr int kAcross = 1, kAttached = 200;
  const int place = utf8proc_get_property(static_cast<utf8proc_int32_t>(c))->combining_class;
  return place == kAcross || place >= kAttached;
}

void AppendDecomposed(std::u32string& characters, utf8proc_int32_t c, int options) {
  std::array<utf8proc_int32_t, 32> parts{};  // Unicode's longest decomposition has 18
  int unused = 0;
  const auto count = utf8proc_decompose_char(c, parts.data(), parts.size(),
                                             static_cast<utf8proc_option_t>(options), &unused);
  characters.append(parts.begin(), parts.begin() + count);
}

// Takes the first character of `text`, which must not be empty, to the end of `characters`.
void MoveCharacter(std::string_view* text, std::u32string* characters) {
  const Character first = TakeCharacter(text);
  if (first.code >= 0) {
    AppendDecomposed(*characters, first.code, UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT);
  } else {
    *characters += kMalformed + ToByte(first.bytes.front());
  }
}

// The folded characters of `text`, at least as many as are wanted where it has them: a caller's
// name can be long, and mostly its first letter decides.
std::u32string Folded(std::string_view text, std::size_t wanted) {
  std::u32string folded;
  while (!text.empty() && folded.size() < wanted) {
    std::u32string characters;
    MoveCharacter(&text, &characters);
    for (const char32_t c : characters) {
      const std::u32string letters = FoldCharacter(c);
      // An accent on a malformed byte stays: without it, the bytes around might form a character.
      const bool onMalformed = !folded.empty() && folded.back() >= kMalformed;
      folded += letters.empty() && onMalformed ? std::u32string(1, c) : letters;
    }
  }
  return folded;
}

void AppendEncoded(std::string& text, char32_t c) {
  if (c >= kMalformed) {
    text += static_cast<char>(c - kMalformed);
    return;
  }
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto count = utf8proc_encode_char(static_cast<utf8proc_int32_t>(c), bytes.data());
  text.append(bytes.begin(), bytes.begin() + count);
}

}  // namespace

std::u32string ReadCharacters(std::string_view text) {
  std::u32string characters;
  characters.reserve(text.size());
  while (!text.empty()) MoveCharacter(&text, &characters);
  return characters;
}

std::u32string FoldCharacter(char32_t character) {
  if (IsAsciiCharacter(character)) return {AsciiToLower(character)};
  if (character >= kMalformed) return {character};
  if (IsAccent(character)) return {};
  std::u32string letters;
  AppendDecomposed(letters, static_cast<utf8proc_int32_t>(character),
                   UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD);
  for (const Expansion& expansion : kExpansions) {
    if (expansion.letters.find(letters) != std::u32string_view::npos) {
      return std::u32string(expansion.basic);
    }
  }
  return letters;
}

std::string FoldText(std::string_view text) {
  std::string folded;
  for (const char32_t c : Folded(text, std::u32string::npos)) AppendEncoded(folded, c);
  return folded;
}

bool BeginsWith(std::string_view text, std::string_view key) {
  while (!text.empty() && !key.empty()) {
    const char32_t inText = ToByte(text.front());
    const char32_t inKey = ToByte(key.front());
    if (!IsAsciiCharacter(inText) || !IsAsciiCharacter(inKey)) break;
    if (AsciiToLower(inText) != AsciiToLower(inKey)) return false;
    text.remove_prefix(1);
    key.remove_prefix(1);
  }
  const std::u32string wanted = Folded(key, std::u32string::npos);
  return Folded(text, wanted.size()).compare(0, wanted.size(), wanted) == 0;
}

}  // namespace desk
