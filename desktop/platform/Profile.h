// The desktop phone's profile: what the phone is set up with, as its TOML file says. Address books
// that the file refers to are read by VCard.h. Files that it names stand relative to it.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "desktop/platform/Accounts.h"
#include "desktop/platform/contacts/Contacts.h"
#include "desktop/platform/transfer/Transfer.h"

namespace desk {

struct Profile {
  std::string timezone;  // TZ value; empty: the machine's
  // By configuration key; a file's settings go before these.
  std::map<std::string, int> config = {{"HistorySavedSwitch", 1}, {"BDDirectoryShowSwitch", 1}};
  std::vector<Account> accounts;
  std::vector<Contact> contacts;
  TransferLimits limits;
  bool network_up = true;
  bool has_menu = true;
};

// Throws std::runtime_error for everything that is wrong in `file` or in what it names. what() is
// one line, "FILE:LINE: reason", or "FILE: reason" for a file that cannot be read.
Profile LoadProfile(const std::filesystem::path& file);

}  // namespace desk
