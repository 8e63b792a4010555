// The phone's configuration values.
#pragma once

// The integer value of `key` as it stands now; the module keeps no copy. What an unset key gives is
// the platform's choice: the module's switches are on only at exactly 1.
//
// Keys read by the module:
//   "HistorySavedSwitch"       1: finished calls are kept
//   "BDDirectoryShowSwitch"    1: server call logs are shown
//   "BSCallLogAddCountryCode"  1: the user wants country codes with the numbers of server lists;
//                              nothing shows it yet: the code is a field of its own
int configParser_GetConfigInt(const char* key);
