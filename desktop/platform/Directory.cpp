// The contact directory and the account manager, over the phone's contacts and accounts.
#include "platform/Directory.h"

#include "desktop/platform/Desktop.h"
#include "platform/AccountManager.h"

using desk::Desktop;

namespace {

const desk::Contact* Find(const char* number) {
  if (number == nullptr || *number == '\0') return nullptr;
  return Desktop::Current().contacts.FindByNumber(number);
}

class DesktopAccountManager : public CAccountManager {};

}  // namespace

std::string Directory_GetContactNameByNumber(const char* number) {
  const desk::Contact* contact = Find(number);
  return contact != nullptr ? contact->name : std::string();
}

bool Directory_GetContactDataByNumber(ContactGeneralItemData* data, const char* number) {
  const desk::Contact* contact = Find(number);
  if (contact == nullptr || data == nullptr) return false;
  data->display_name = contact->name;
  data->numbers.assign(contact->numbers.begin(), contact->numbers.end());
  data->image_path = contact->photo;
  return true;
}

std::string Directory_GetContactImageByNumber(const char* number, const char* fallback) {
  const desk::Contact* contact = Find(number);
  return contact != nullptr && !contact->photo.empty() ? contact->photo : fallback;
}

CAccountManager* CAccountManager::GetInstance() {
  static DesktopAccountManager manager;
  return &manager;
}

CAccount* CAccountManager::GetAccountByFullName(const std::string& fullName) {
  return Desktop::Current().accounts.FindByFullName(fullName);
}

CAccount* CAccountManager::GetAccountBySIPName(const std::string& sipName) {
  return Desktop::Current().accounts.FindBySipName(sipName);
}
