// Reads address books in vCard form (2.1, 3.0, 4.0): of each card its name, numbers and photo.
// Opening files is left to the caller.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/platform/Contacts.h"

namespace desk {

// what() is one line, "SOURCE:LINE: reason".
class VCardError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The cards of `text` that have a name and a number, in order; the others are skipped. `source`
// names the text in errors. Throws VCardError when the text holds no card or a damaged one.
std::vector<Contact> ParseVCards(const std::string& text, const std::string& source);

}  // namespace desk
