// An index from number to contact keeps look-ups fast; only a removal or a replacement of all
// rebuilds it.
#include "desktop/platform/Contacts.h"

#include <algorithm>
#include <array>
#include <utility>

namespace desk {

namespace {

// Address books of mobile phones write no-break spaces and hyphens too.
constexpr std::array<std::string_view, 11> kSeparators = {
    " ", "\t", "-", "(", ")", ".", "/", "\u00A0", "\u202F", "\u2010", "\u2011"};

bool IsSipName(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    return c == '@' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  });
}

}  // namespace

std::string DialledForm(std::string_view written) {
  if (IsSipName(written)) return std::string(written);
  std::string dialled;
  while (!written.empty()) {
    const auto separator =
        std::find_if(kSeparators.begin(), kSeparators.end(), [&](std::string_view candidate) {
          return written.substr(0, candidate.size()) == candidate;
        });
    const bool kept = separator == kSeparators.end();
    if (kept) dialled += written.front();
    written.remove_prefix(kept ? 1 : separator->size());
  }
  return dialled;
}

const Contact* Contacts::FindByNumber(std::string_view number) const {
  const auto found = positions_.find(std::string(number));
  return found == positions_.end() ? nullptr : &contacts_[found->second];
}

void Contacts::Replace(std::vector<Contact> contacts) {
  contacts_ = std::move(contacts);
  positions_.clear();
  for (std::size_t i = 0; i < contacts_.size(); ++i) Index(i);
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
    std::vector<Contact> others = std::move(contacts_);
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(found->second));
    Replace(std::move(others));
  } else {
    contact.name = std::move(newName);
  }
  return true;
}

void Contacts::Index(std::size_t position) {
  for (const std::string& number : contacts_[position].numbers) {
    if (!number.empty()) positions_.emplace(number, position);
  }
}

}  // namespace desk
