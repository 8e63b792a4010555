// The exported functions by their own names, with what they return: for whoever wants to know how
// the library answers.
#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

void Returned(Console& console, int value) { console.out << "  returned " << value << "\n"; }

void Returned(Console& console, const std::string& value) {
  console.out << "  returned \"" << Printable(value) << "\"\n";
}

void AddLog(Console& console, Arguments& arguments) {
  CallLogAddItemData call;
  call.type = ParseInt(arguments.Word("type"), "type");
  call.remote_sip_name = arguments.Word("remote_sip_name");
  call.remote_display_name = arguments.WordOr("");
  call.born_tick = ParseInt(arguments.WordOr("0"), "born_tick");
  call.duration = ParseInt(arguments.WordOr("0"), "duration");
  arguments.Done();
  Returned(console, CallLog_AddLog(call));
}

void UpdateLog(Console& console, Arguments& arguments) {
  CallLogUpdateData contact;
  contact.display_name = arguments.Word("display_name");
  contact.number_1 = arguments.WordOr("");
  contact.number_2 = arguments.WordOr("");
  contact.number_3 = arguments.WordOr("");
  arguments.Done();
  Returned(console, CallLog_UpdateLog(contact));
}

// Asks for a page with the request of the next two words, and prints what came.
template <class Page, class Ask>
void AskForPage(Console& console, Arguments& arguments, Ask ask) {
  Page page;
  page.request_index = ParseInt(arguments.WordOr("0"), "request_index");
  page.request_count = ParseInt(arguments.WordOr("10"), "request_count");
  arguments.Done();
  Returned(console, ask(&page));
  console.out << "  total " << page.total << "\n";
  std::vector<std::vector<std::string>> rows;
  for (const auto& item : page.items) {
    rows.push_back({Printable(item.display_name), Printable(item.number)});
  }
  PrintTable(console.out, rows);
}

void Search(Console& console, Arguments& arguments) {
  const std::string key = arguments.Word("the key");
  AskForPage<CallLogSearchListData>(
      console, arguments, [&](CallLogSearchListData* page) { return CallLog_Search(page, key); });
}

void RecentOutCall(Console& console, Arguments& arguments) {
  AskForPage<CallLogSearchListData>(console, arguments, CallLog_SearchRecentOutCall);
}

void SuperRecentOutCall(Console& console, Arguments& arguments) {
  AskForPage<SuperSearchListData>(console, arguments, CallLog_SuperSearchRecentOutCall);
}

template <auto Function>
void Plain(Console& console, Arguments& arguments) {
  arguments.Done();
  Returned(console, Function());
}

template <auto Function>
void WithNumber(Console& /*console*/, Arguments& arguments) {
  const bool null = !arguments.HasWord();
  const std::string number = arguments.WordOr("");
  arguments.Done();
  Function(null ? nullptr : number.c_str());
}

}  // namespace

CommandGroup ExportCommands() {
  const char* const page = "[REQUEST_INDEX [REQUEST_COUNT]]";
  return {
      "The exported functions by name",
      {
          {"CallLog_AddLog", "TYPE NUMBER [NAME [BORN_TICK [DURATION]]]", "0 stored, -1 refused",
           AddLog},
          {"CallLog_UpdateLog", "NAME [NUMBER [NUMBER [NUMBER]]]", "1", UpdateLog},
          {"CallLog_ResetLogContactName", "", "1", Plain<CallLog_ResetLogContactName>},
          {"CallLog_Search", std::string("KEY ") + page, "1, or 0 when refused", Search},
          {"CallLog_SearchRecentOutCall", page, "1, or 0 when refused", RecentOutCall},
          {"CallLog_SuperSearchRecentOutCall", page, "1, or 0 when refused", SuperRecentOutCall},
          {"CallLog_GetLastNewInCall", "", "a number, or empty", Plain<CallLog_GetLastNewInCall>},
          {"CallLog_GetLastOutCall", "", "a number, or empty", Plain<CallLog_GetLastOutCall>},
          {"CallLog_IsBroadSoftCallLogConfigured", "", "1 or 0",
           Plain<CallLog_IsBroadSoftCallLogConfigured>},
          {"CallLog_IsOtherLocalCallLogConfigured", "", "1 or 0",
           Plain<CallLog_IsOtherLocalCallLogConfigured>},
          {"CallLog_GetBSCallLogDisplayName", "", "a name, or empty",
           Plain<CallLog_GetBSCallLogDisplayName>},
          {"CallLog_RegisterMessage", "", "1", Plain<CallLog_RegisterMessage>},
          {"RemoveMissedDirtyByNumber", "[NUMBER]", "nothing; without a number: null",
           WithNumber<RemoveMissedDirtyByNumber>},
          {"RemoveForwardDirtyByNumber", "[NUMBER]", "nothing; without a number: null",
           WithNumber<RemoveForwardDirtyByNumber>},
      }};
}

}  // namespace desk
