// The layout of the key pad. Case, accents and the Latin letters beyond a to z are TextMatch's:
// such a letter lies on the key of the first basic letter that users type for it.
#include "desktop/platform/contacts/KeyPad.h"

#include "desktop/platform/contacts/TextMatch.h"

namespace desk {
namespace {

// What lies on the keys with letters, behind the key's own digit.
constexpr std::u32string_view kKeys[] = {
    U"2abcαβγабвгәӕґғҕӷӻ",
    U"3defδεζдежзђєѕҙҗԫӡԁԃԅԇԑ",
    U"4ghiηθιийкліјҋљқҝҟҡӄԛԟӆԉԓԕԡԯ",
    U"5jklκλμмнопњңҥөҧӈӊӎҁԋԣԥԩ",
    U"6mnoνξοрстуҏҫћҭүұѹԍԏԗ",
    U"7pqrsπρσςфхцчҳһҵҷҹџҽҿӌѡѻѽѿӽӿԧԭ",
    U"8tuvτυφшщъы",
    U"9wxyzχψωьэюяҍҩѣѥѧѩѫѭѯѱѳѵӏԙԝ",
};

// 0: no key.
char KeyOf(char32_t letter) {
  constexpr std::u32string_view kBare = U"01*#+";
  if (kBare.find(letter) != kBare.npos) return static_cast<char>(letter);
  for (const std::u32string_view key : kKeys) {
    if (key.find(letter) != key.npos) return static_cast<char>(key.front());
  }
  return '\0';
}

}  // namespace

std::string ToKeyString(std::string_view name) {
  std::string keys;
  for (const char32_t c : ReadCharacters(name)) {
    if (const char key = KeyOf(FoldCharacter(c)[0])) keys += key;  // nothing for an accent
  }
  return keys;
}

}  // namespace desk
