// The phone's contact directory: who has which number. It compares numbers byte by byte and reads
// no file; how people write numbers is the concern of DialledForm, which the loaders apply.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace desk {

struct Contact {
  std::string name;
  std::vector<std::string> numbers;
  std::string photo;  // path or URI; empty: none
};

// `written` without the blanks, dashes, brackets, dots and slashes that people put between digits,
// and without the "(0)" behind a country code.
// A text with a letter or "@" is a SIP name rather than a number and stays as it is.
std::string DialledForm(std::string_view written);

class Contacts {
 public:
  explicit Contacts(std::vector<Contact> contacts) : contacts_(std::move(contacts)) { Index(0); }

  const std::vector<Contact>& All() const { return contacts_; }

  // The first contact that has exactly `number`; valid until the next change. Null: none.
  const Contact* FindByNumber(std::string_view number) const;

  void Add(Contact contact);

  // Gives the contact of `number` a new name: a new contact when there is none, the contact's
  // removal when the name is empty. False: nothing changed.
  bool Rename(std::string_view number, std::string newName);

 private:
  void Index(std::size_t first);  // and all behind it

  std::vector<Contact> contacts_;
  std::unordered_map<std::string, std::size_t> positions_;  // by number
};

}  // namespace desk
