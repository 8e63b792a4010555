// Reads address books in vCard form (2.1, 3.0, 4.0): of each card its name, numbers and photo.
// Opening files is left to the caller.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "desktop/platform/contacts/Contacts.h"

namespace desk {

// The cards of `text` that have a number and a name (or at least the parts of one, or a company),
// in order. Of each other and of what is no card, `skipped` gets a line "SOURCE:LINE: reason".
std::vector<Contact> ParseVCards(const std::string& text, const std::string& source,
                                 std::ostream& skipped);

}  // namespace desk
