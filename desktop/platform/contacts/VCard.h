// Reads address books in vCard form (2.1, 3.0, 4.0): of each card its name, numbers and photo.
// Opening files is left to the caller.
#pragma once

#include <string>
#include <vector>

#include "desktop/platform/contacts/Contacts.h"

namespace desk {

// The cards of `text` that have a name and a number, in order; the others are skipped. Throws
// std::runtime_error, "SOURCE:LINE: reason", when the text holds no card or a damaged one.
std::vector<Contact> ParseVCards(const std::string& text, const std::string& source);

}  // namespace desk
