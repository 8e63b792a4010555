// The account manager over the phone's accounts; an account is a desk::Account.
#include "platform/AccountManager.h"

#include "desktop/platform/Platform.h"

using desk::Platform;

namespace {

class DesktopAccountManager : public CAccountManager {};

}  // namespace

CAccountManager* CAccountManager::GetInstance() {
  static DesktopAccountManager manager;
  return &manager;
}

CAccount* CAccountManager::GetAccountByFullName(const std::string& fullName) {
  return Platform::Current().accounts.FindByFullName(fullName);
}

CAccount* CAccountManager::GetAccountBySIPName(const std::string& sipName) {
  return Platform::Current().accounts.FindBySipName(sipName);
}
