// The look-ups, and what the module asks of one account. The account manager's own functions stand
// beside the directory's.
#include "desktop/platform/Accounts.h"

#include <algorithm>

namespace desk {

namespace {

template <typename Condition>
Account* First(std::vector<Account>& accounts, Condition condition) {
  const auto found = std::find_if(accounts.begin(), accounts.end(), condition);
  return found == accounts.end() ? nullptr : &*found;
}

}  // namespace

Account* Accounts::FindByFullName(std::string_view fullName) {
  return First(accounts_, [&](const Account& account) { return account.FullName() == fullName; });
}

Account* Accounts::FindBySipName(std::string_view sipName) {
  return First(accounts_, [&](const Account& account) { return account.name == sipName; });
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
