// Idle screen statuses and the key-pad form of names. Message thread only.
#pragma once

#include <string>

// Shows `text` as the idle status `id`, in place of the text that this id shows already.
// The module uses 12 for missed and 15 for forwarded calls. This function and the next may enter
// the module again, but for ReleaseInstance(): see CallLog.h. This one does so when it has set its
// text, or what it sets would be older than what the inner call has set.
void CommonUnits_AddStatus(int id, const std::string& text);

// Takes the idle status `id` away; nothing happens when it is not shown.
void CommonUnits_RemoveStatus(int id);

// `name` as it would be typed on a key pad, one digit per letter: "Anna" gives "2662". The search
// compares what a user types with it, so it must be stable from one call to the next. Callers
// choose their names: any bytes, any length, must not throw but for want of memory. A call whose
// name makes it throw all the same is kept, and found by no digits of its name.
std::string CommonUnits_ToKeyString(const std::string& name);
