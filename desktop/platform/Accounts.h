// The phone's SIP accounts: what an account is and how one is found. Who holds them, and the
// account manager the module asks, is the desktop phone's concern.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/AccountManager.h"

namespace desk {

struct Account : CAccount {
  Account() = default;
  Account(int accountId, std::string sipName, std::string sipServer)
      : id(accountId), name(std::move(sipName)), server(std::move(sipServer)) {}

  std::string FullName() const { return name + "@" + server; }

  int id = 0;
  std::string name;  // SIP user name
  std::string server;
  bool usable = true;        // calls can be placed through it
  bool keeps_missed = true;  // its missed calls go into the history
};

class Accounts {
 public:
  explicit Accounts(std::vector<Account> accounts) : accounts_(std::move(accounts)) {}

  const std::vector<Account>& All() const { return accounts_; }

  // The first such account; valid as long as the accounts. Null: none.
  Account* FindByFullName(std::string_view fullName);
  Account* FindBySipName(std::string_view sipName);
  // By full name, else by SIP name.
  Account* Find(std::string_view name);

 private:
  std::vector<Account> accounts_;
};

}  // namespace desk
