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
// Re-entry: from inside CommonUnits_AddStatus, CommonUnits_RemoveStatus, backlight_RegisterEvent
// and ledlamp_PostEvent every call may be made but ReleaseInstance(). The lists are by then as they
// will be: a call that is being removed is in none. What has changed is not yet to be saved, and
// what the outer call still posts to that status, backlight and LED carries the count of before. A
// call that comes in from there while the list of all calls is being opened can count as seen. From
// inside any other operation of the platform no call may be made.
//
// Failures are results, never exceptions. When memory runs out, or an operation of the platform
// throws that is not declared never to, a call answers what it answers for a failure (0, -1, false,
// an empty text, null for a controller that could not be created, which the next call tries again),
// a page handed in stays as it was, and no record is there in part.
#pragma once

#include "BSCallLogController.h"
#include "CallLogController.h"
#include "CallLogExport.h"
#include "CallLogMessages.h"
#include "CallLogRecords.h"

// The functions below reach the module without holding a controller. The first call of a run
// creates the controller, and with it loads the history.

extern "C" {

// Stores a finished call as new and shows it when it was missed or forwarded. When its type holds a
// hundred already, the last of them goes, also for a call that is older than that.
// 0: stored. -1: refused, because the configuration value "HistorySavedSwitch" is not 1, because
// the type is not 1 to 4, because it is a missed call of an account that keeps no missed calls, or
// because there is no memory for it.
CALLLOG_EXPORT int CallLog_AddLog(const CallLogAddItemData& call);

// Gives every stored call of a contact's numbers the contact's name, and every call forwarded to
// one of them; the name of a forward target is not saved. Until the next start a search by digits
// finds a call under the key-pad form of the name that it came or was loaded with. 1; 0 when memory
// ran out on the way.
CALLLOG_EXPORT int CallLog_UpdateLog(const CallLogUpdateData& contact);

// Forgets every contact's name: each stored call shows its number again, and so does the target of
// a forwarded one. The key-pad forms stay as above. 1; 0 when memory ran out on the way.
CALLLOG_EXPORT int CallLog_ResetLogContactName();

// Fills one page of the calls whose number, or name spelled on the key pad, begins with `key` (when
// the key begins with a digit, "*" or "#"), or whose name begins with it (otherwise). Letter case
// and accents are the platform's concern. Each name and number stands once, ordered by name and
// number. Asking again with the same or a longer key is cheap until the history changes. 1: filled.
// 0: null page, empty key (which drops the held search), a key of which the platform's conversion
// leaves nothing, or a page refused by the platform.
CALLLOG_EXPORT int CallLog_Search(CallLogSearchListData* page, const std::string& key);

// Fills one page of the dialled numbers, most dialled first, of equally many calls the last dialled
// first. 1: filled. 0: null page, or a page refused by the platform.
CALLLOG_EXPORT int CallLog_SearchRecentOutCall(CallLogSearchListData* page);

// The same, cut to the ten most dialled numbers.
CALLLOG_EXPORT int CallLog_SuperSearchRecentOutCall(SuperSearchListData* page);

// The user has dealt with the missed (forwarded) calls from `number`: they are no longer new, and
// the idle screen, LED and backlight follow. Numbers are compared byte for byte with the caller's
// number. Null does nothing, and does not create the controller.
CALLLOG_EXPORT void RemoveMissedDirtyByNumber(const char* number);
CALLLOG_EXPORT void RemoveForwardDirtyByNumber(const char* number);

// 1 when the configuration value "BDDirectoryShowSwitch" is 1 and some source of server call logs
// has a name, else 0. The two are the same question. The first call creates the server controller,
// and with it loads the sources.
CALLLOG_EXPORT int CallLog_IsBroadSoftCallLogConfigured();
CALLLOG_EXPORT int CallLog_IsOtherLocalCallLogConfigured();

// Registers the module for the platform's message BROAD_MSG_CONFIG_CHANGE, 0x10007; call it once,
// at start-up. Item ST_BS_CALLLOG, 0x28, reloads the sources of the server call logs, sets the
// title of their menu entry, sends MSG_BS_CALLLOG_RELOADED to the application and replies 1. Item
// 0x47 goes to the local history as the click action "OpenCallLogPage(local_contact_1)", without a
// reply. Nothing unregisters it. 1, also when the platform refused the registration; 0 when there
// is no memory for it.
CALLLOG_EXPORT int CallLog_RegisterMessage();

}  // extern "C"

// Number of the newest call that is not outgoing (seen or not); empty when there is none.
CALLLOG_EXPORT std::string CallLog_GetLastNewInCall();

// Number of the newest outgoing call; empty when there is none.
CALLLOG_EXPORT std::string CallLog_GetLastOutCall();

// The name under which the menu shows the server call logs; empty when none is set.
CALLLOG_EXPORT std::string CallLog_GetBSCallLogDisplayName();
