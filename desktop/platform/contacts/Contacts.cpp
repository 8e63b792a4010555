// An index from number to contact keeps look-ups fast; only a removal or a replacement of all
// rebuilds it.
#include "desktop/platform/contacts/Contacts.h"

#include <algorithm>
#include <utility>

#include "desktop/platform/Text.h"

namespace desk {

std::string DialledForm(std::string_view written) {
  // Address books of mobile phones write no-break spaces and hyphens too.
  constexpr std::u32string_view kSeparators = U" \t-()./\u00A0\u202F\u2010\u2011";
  constexpr std::string_view kTrunkPrefix = "(0)";  // for who calls from the same country
  const bool isSipName = std::any_of(written.begin(), written.end(), [](char c) {
    return c == '@' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  });
  if (isSipName) return std::string(written);
  std::string dialled;
  while (!written.empty()) {
    const bool abroad = dialled.rfind('+', 0) == 0 || dialled.rfind("00", 0) == 0;
    if (abroad && written.rfind(kTrunkPrefix, 0) == 0) written.remove_prefix(kTrunkPrefix.size());
    if (written.empty()) break;
    const Character next = TakeCharacter(&written);
    const auto code = static_cast<char32_t>(next.code);
    if (kSeparators.find(code) == kSeparators.npos) dialled += next.bytes;
  }
  return dialled;
}

const Contact* Contacts::FindByNumber(std::string_view number) const {
  const auto found = positions_.find(std::string(number));
  return found == positions_.end() ? nullptr : &contacts_[found->second];
}

void Contacts::Add(Contact contact) {
  contacts_.push_back(std::move(contact));
  Index(contacts_.size() - 1);
}

bool Contacts::Rename(std::string_view number, std::string newName) {
  const auto found = positions_.find(std::string(number));
  if (found == positions_.end()) {
    if (number.empty() || newName.empty()) return false;
    Add({std::move(newName), {std::string(number)}, {}});
    return true;
  }
  Contact& contact = contacts_[found->second];
  if (contact.name == newName) return false;
  if (newName.empty()) {
    contacts_.erase(contacts_.begin() + static_cast<std::ptrdiff_t>(found->second));
    positions_.clear();
    Index(0);
  } else {
    contact.name = std::move(newName);
  }
  return true;
}

void Contacts::Index(std::size_t first) {
  for (std::size_t i = first; i < contacts_.size(); ++i) {
    for (const std::string& number : contacts_[i].numbers) {
      if (!number.empty()) positions_.emplace(number, i);
    }
  }
}

}  // namespace desk
