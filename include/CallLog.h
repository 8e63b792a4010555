// The call log module of the phone's UI process: the one header to include.
//
// The module keeps the local call history: outgoing, missed, received and forwarded calls, at most
// 100 of each, newest first, in memory and in /config/data/call_data.xml, which it rewrites 5
// seconds after the first change. It counts the missed and forwarded calls that the user has not
// yet seen, and shows their number on the idle screen, the LED and the backlight.
//
// Call types, everywhere a plain int: 1 outgoing, 2 missed, 3 received, 4 forwarded; 0 stands for
// all of them where calls are selected.
//
// Thread: every call is made on the UI application's message thread. The module takes no locks.
//
// Failures are results, never exceptions.
#pragma once

#include "CallLogController.h"
#include "CallLogExport.h"
#include "CallLogRecords.h"

// The functions below reach the module without holding a controller. The first call of a run
// creates the controller, and with it loads the history.

extern "C" {

// Stores a finished call as new and shows it when it was missed or forwarded.
// 0: stored. -1: refused, because the configuration value "HistorySavedSwitch" is not 1, because
// the type is not 1 to 4, or because it is a missed call of an account that keeps no missed calls.
CALLLOG_EXPORT int CallLog_AddLog(const CallLogAddItemData& call);

// Gives every stored call of a contact's numbers the contact's name. Always 1.
CALLLOG_EXPORT int CallLog_UpdateLog(const CallLogUpdateData& contact);

// The user has dealt with the missed (forwarded) calls from `number`: they are no longer new, and
// the idle screen, LED and backlight follow. Numbers are compared byte for byte with the caller's
// number. Null does nothing, and does not create the controller.
CALLLOG_EXPORT void RemoveMissedDirtyByNumber(const char* number);
CALLLOG_EXPORT void RemoveForwardDirtyByNumber(const char* number);

}  // extern "C"

// Number of the newest call that is not outgoing (seen or not); empty when there is none.
CALLLOG_EXPORT std::string CallLog_GetLastNewInCall();

// Number of the newest outgoing call; empty when there is none.
CALLLOG_EXPORT std::string CallLog_GetLastOutCall();
