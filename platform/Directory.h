// The phone's contact directory. Message thread only. Callers choose their numbers: any bytes, any
// length, must not throw but for want of memory.
#pragma once

#include <list>
#include <string>

// A contact as the directory knows it. The module never looks inside: it passes the caller's record
// on.
class ContactGeneralItemData {
 public:
  std::string display_name;        // the contact's name
  std::list<std::string> numbers;  // all its numbers
  std::string image_path;          // its photo; empty when it has none
};

// Name of the contact that has `number`; empty when there is none or `number` is null or empty.
std::string Directory_GetContactNameByNumber(const char* number);

// Fills `contact` for `number`. True when there is such a contact; otherwise false, `contact`
// untouched.
bool Directory_GetContactDataByNumber(ContactGeneralItemData* contact, const char* number);

// Path of the photo of the contact that has `number`; `fallback` when there is no such contact or
// it has no photo. The module passes an empty fallback.
std::string Directory_GetContactImageByNumber(const char* number, const char* fallback);
