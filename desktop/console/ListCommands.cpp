// Commands that look at the history as the UI's pages do, and remove from it.
#include "CallLog.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

void List(Console& console, Arguments& arguments) {
  constexpr int kAllRows = 400;
  const std::string type = arguments.WordOr("all");
  CallLogSimpleListData page = ParsePage(arguments, kAllRows);
  if (History().GetLogListByClickAction(&page, ListAction(type)) != 1) {
    return console.Say("no such list or page");
  }
  PrintCallList(console.out, Printable(type), page);
}

void Detail(Console& console, Arguments& arguments) {
  const std::string action = ListAction(arguments.Word("the call type"));
  const int row = arguments.Int("the row");
  arguments.Done();
  CallLogDetailData detail;
  if (History().GetLogDetailByClickAction(&detail, action, row) != 1) {
    return console.Say("no such row");
  }
  PrintDetail(console.out, detail);
  const std::string icon = History().GetImagePathByType(detail.type);
  if (!icon.empty()) console.Say("icon  " + icon);
}

int RemoveRows(const std::string& action, const std::string& first, Arguments& arguments) {
  std::list<int> rows = {ParseInt(first, "the row")};
  while (arguments.HasWord()) rows.push_back(arguments.Int("the row"));
  return rows.size() == 1 ? History().RemoveLog(action, rows.front())
                          : History().RemoveLogList(action, rows);
}

void Remove(Console& console, Arguments& arguments) {
  const std::string action = ListAction(arguments.Word("the call type"));
  const std::string first = arguments.Word("the row, rows, or \"all\"");
  if (first == "all") arguments.Done();
  const int result = first == "all" ? History().RemoveAllLogsByClickAction(action)
                                    : RemoveRows(action, first, arguments);
  console.Say(result == 1 ? "removed" : "nothing removed");
}

void Last(Console& console) {
  const auto shown = [](const std::string& number) {
    return number.empty() ? std::string("none") : Printable(number);
  };
  console.Say("last in " + shown(CallLog_GetLastNewInCall()) + ", last out " +
              shown(CallLog_GetLastOutCall()));
}

void Idle(Console& console) {
  PrintIdleScreen(console.out, console.phone.platform().display,
                  console.phone.platform().clock().Wall());
}

void NewCalls(Console& console, Arguments& arguments) {
  const bool missed = arguments.Either("missed", "forwarded");
  arguments.Done();
  if (missed) {
    MissedNotifyListData list;
    History().GetMissedNotifyList(&list);
    PrintMissed(console.out, list);
  } else {
    ForwardedNotifyList list;
    History().GetForwardedNotifyList(&list);
    PrintForwarded(console.out, list);
  }
}

void DealtWith(Console& /*console*/, Arguments& arguments) {
  const bool missed = arguments.Either("missed", "forwarded");
  const std::string number = arguments.Word("the number");
  arguments.Done();
  (missed ? RemoveMissedDirtyByNumber : RemoveForwardDirtyByNumber)(number.c_str());
}

}  // namespace

CommandGroup ListCommands() {
  return {"lists",
          "The idle screen and the lists (rows count from 0)",
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
