// Commands that look at the history as the UI's pages do, and remove from it.
#include "CallLog.h"
#include "desktop/console/CallType.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;

CCallLogController& Controller() { return *CCallLogController::GetInstance(); }

void List(Console& console, Arguments& arguments) {
  constexpr char kAllRows[] = "400";
  const std::string type = arguments.WordOr("all");
  CallLogSimpleListData page;
  page.request_index = ParseInt(arguments.WordOr("0"), "the first row");
  page.request_count = ParseInt(arguments.WordOr(kAllRows), "the number of rows");
  arguments.Done();
  if (Controller().GetLogListByClickAction(&page, ListAction(type)) != 1) {
    console.out << "  no such list or page\n";
    return;
  }
  PrintCallList(console.out, Printable(type), page);
}

void Detail(Console& console, Arguments& arguments) {
  const std::string action = ListAction(arguments.Word("the call type"));
  const int row = ParseInt(arguments.Word("the row"), "the row");
  arguments.Done();
  CallLogDetailData detail;
  if (Controller().GetLogDetailByClickAction(&detail, action, row) != 1) {
    console.out << "  no such row\n";
    return;
  }
  PrintDetail(console.out, detail);
  const std::string icon = Controller().GetImagePathByType(detail.type);
  if (!icon.empty()) console.out << "  icon  " << icon << "\n";
}

void Remove(Console& console, Arguments& arguments) {
  const std::string action = ListAction(arguments.Word("the call type"));
  const std::string first = arguments.Word("the row, rows, or \"all\"");
  int result = 0;
  if (first == "all") {
    arguments.Done();
    result = Controller().RemoveAllLogsByClickAction(action);
  } else {
    std::list<int> rows = {ParseInt(first, "the row")};
    for (const std::string& row : arguments.RestOfWords()) rows.push_back(ParseInt(row, "the row"));
    result = rows.size() == 1 ? Controller().RemoveLog(action, rows.front())
                              : Controller().RemoveLogList(action, rows);
  }
  console.out << (result == 1 ? "  removed\n" : "  nothing removed\n");
}

void Last(Console& console, Arguments& arguments) {
  arguments.Done();
  const auto shown = [](const std::string& number) {
    return number.empty() ? std::string("none") : Printable(number);
  };
  console.out << "  last in " << shown(CallLog_GetLastNewInCall()) << ", last out "
              << shown(CallLog_GetLastOutCall()) << "\n";
}

void Idle(Console& console, Arguments& arguments) {
  arguments.Done();
  PrintIdleScreen(console.out, console.phone.platform().display,
                  console.phone.platform().clock().Wall());
}

// True for missed, false for forwarded.
bool IsMissedKind(const std::string& kind) {
  if (kind == "missed") return true;
  if (kind == "forwarded") return false;
  throw CommandError("missed or forwarded is wanted, not \"" + kind + "\"");
}

void NewCalls(Console& console, Arguments& arguments) {
  const bool missed = IsMissedKind(arguments.Word("missed or forwarded"));
  arguments.Done();
  if (missed) {
    MissedNotifyListData list;
    Controller().GetMissedNotifyList(&list);
    PrintMissed(console.out, list);
  } else {
    ForwardedNotifyList list;
    Controller().GetForwardedNotifyList(&list);
    PrintForwarded(console.out, list);
  }
}

void DealtWith(Console& /*console*/, Arguments& arguments) {
  const bool missed = IsMissedKind(arguments.Word("missed or forwarded"));
  const std::string number = arguments.Word("the number");
  arguments.Done();
  if (missed) {
    RemoveMissedDirtyByNumber(number.c_str());
  } else {
    RemoveForwardDirtyByNumber(number.c_str());
  }
}

}  // namespace

CommandGroup ListCommands() {
  return {"The idle screen and the lists (rows count from 0)",
          {
              {"idle", "", "the idle screen, LED and backlight", Idle},
              {"list", "[TYPE] [FIRST [COUNT]]",
               "a call list; opening missed, forwarded or all marks those calls seen", List},
              {"detail", "TYPE ROW", "the detail of one call", Detail},
              {"remove", "TYPE ROW... | TYPE all", "removes calls", Remove},
              {"last", "", "the last incoming and the last outgoing number", Last},
              {"new", "missed|forwarded", "the new calls by caller; marks nothing seen", NewCalls},
              {"dealt", "missed|forwarded NUMBER", "the calls from a number are no longer new",
               DealtWith},
          }};
}

}  // namespace desk
