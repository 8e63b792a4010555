// The layout of the key pad. Case, accents and the Latin letters beyond a to z are TextMatch's:
// such a letter lies on the key of the first basic letter that users type for it.
#include "desktop/platform/KeyPad.h"

#include <array>

#include "desktop/platform/TextMatch.h"

namespace desk {
namespace {

struct KeyLetters {
  char key;
  std::u32string_view letters;
};

constexpr KeyLetters kLayout[] = {
    {'2', U"abcABC"},   {'2', U"αβγ"},  {'2', U"абвгәӕґғҕӷӻ"},
    {'3', U"defDEF"},   {'3', U"δεζ"},  {'3', U"дежзђєѕҙҗԫӡԁԃԅԇԑ"},
    {'4', U"ghiGHI"},   {'4', U"ηθι"},  {'4', U"ийкліјҋљқҝҟҡӄԛԟӆԉԓԕԡԯ"},
    {'5', U"jklJKL"},   {'5', U"κλμ"},  {'5', U"мнопњңҥөҧӈӊӎҁԋԣԥԩ"},
    {'6', U"mnoMNO"},   {'6', U"νξο"},  {'6', U"рстуҏҫћҭүұѹԍԏԗ"},
    {'7', U"pqrsPQRS"}, {'7', U"πρσς"}, {'7', U"фхцчҳһҵҷҹџҽҿӌѡѻѽѿӽӿԧԭ"},
    {'8', U"tuvTUV"},   {'8', U"τυφ"},  {'8', U"шщъы"},
    {'9', U"wxyzWXYZ"}, {'9', U"χψω"},  {'9', U"ьэюяҍҩѣѥѧѩѫѭѯѱѳѵӏԙԝ"},
};

constexpr std::size_t kLettersEnd = 0x530;  // the end of Cyrillic

constexpr std::array<char, kLettersEnd> MakeKeys() {
  std::array<char, kLettersEnd> keys{};
  for (const char32_t c : std::u32string_view(U"0123456789*#+")) keys[c] = static_cast<char>(c);
  for (const KeyLetters& row : kLayout) {
    for (const char32_t letter : row.letters) keys[letter] = row.key;
  }
  return keys;
}

constexpr std::array<char, kLettersEnd> kKeys = MakeKeys();

// 0: no key.
char KeyOf(char32_t letter) { return letter < kKeys.size() ? kKeys[letter] : '\0'; }

}  // namespace

std::string ToKeyString(std::string_view name) {
  std::string keys;
  const auto append = [&keys](char32_t letter) {
    if (const char key = KeyOf(letter)) keys += key;
  };
  if (IsAscii(name)) {
    for (const char c : name) append(static_cast<unsigned char>(c));
  } else {
    for (const char32_t c : ReadCharacters(name)) append(FoldCharacter(c)[0]);  // 0 for an accent
  }
  return keys;
}

}  // namespace desk
