// The look-ups, and what the module asks of one account. The account manager's own functions stand
// beside the directory's.
#include "desktop/platform/Accounts.h"

namespace desk {

Account* Accounts::FindByFullName(std::string_view fullName) {
  for (Account& account : accounts_) {
    if (account.FullName() == fullName) return &account;
  }
  return nullptr;
}

Account* Accounts::FindBySipName(std::string_view sipName) {
  for (Account& account : accounts_) {
    if (account.name == sipName) return &account;
  }
  return nullptr;
}

Account* Accounts::Find(std::string_view name) {
  Account* account = FindByFullName(name);
  return account != nullptr ? account : FindBySipName(name);
}

}  // namespace desk

// Every CAccount of this platform is a desk::Account: nothing else derives from it.
bool CAccount::IsSaveMissCallLog() const {
  return static_cast<const desk::Account*>(this)->keeps_missed;
}

bool CAccount::IsAccountUsable() const { return static_cast<const desk::Account*>(this)->usable; }

int CAccount::GetAccountId() const { return static_cast<const desk::Account*>(this)->id; }
