// What all contestants work on: calls as a phone collects them, and documents as servers send them.
// Made up, and the same in every run.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "CallLogRecords.h"

namespace bench {

inline constexpr int kTypes = 4;
inline constexpr int kCallsPerType = 100;
inline constexpr int kCalls = kTypes * kCallsPerType;
inline constexpr int kPage = 10;  // rows on the display

// The calls of an office, oldest first, the types in turn: 60 parties, 25 of them with missed
// calls, names of 6 to 22 characters, some with accents. One party alone is called Zimmermann.
std::vector<CallLogAddItemData> OfficeCalls(int count);

// kCalls calls of as many parties. All the numbers of the first `hits` begin with "0306", and all
// their names with "Mari"; no other does. A tenth of them go on with each digit.
std::vector<CallLogAddItemData> CampaignCalls(int hits);

// Names and numbers of the office's parties, for a refresh of names.
std::list<SuperSearchItemData> OfficeParties();

// A server's call log of so many entries.
std::string ServerDocument(int entries);

}  // namespace bench
