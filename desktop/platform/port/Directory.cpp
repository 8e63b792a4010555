// The contact directory over the phone's contacts.
#include "platform/Directory.h"

#include "desktop/platform/Platform.h"

namespace {

const desk::Contact* Find(const char* number) {
  if (number == nullptr || *number == '\0') return nullptr;
  return desk::Platform::Current().contacts.FindByNumber(number);
}

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
