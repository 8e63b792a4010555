// Commands that search the history, and change the names in it.
#include "CallLog.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr int kRowsShown = 10;

template <class Page>
void PrintHits(std::ostream& out, const Page& page) {
  Table rows;
  int row = page.request_index;
  for (const auto& item : page.items) {
    rows.push_back({std::to_string(row++), Printable(item.display_name), Printable(item.number)});
  }
  PrintTable(out, rows);
}

// Key by key, as the search page of a phone asks: each key narrows the list.
void Search(Console& console, Arguments& arguments) {
  const std::string key = arguments.Word("the key");
  const int first = arguments.IntOr("the first row", 0);
  arguments.Done();
  CallLogSearchListData page;
  for (std::string_view rest = key; !rest.empty();) {
    TakeCharacter(&rest);
    const std::string typed = key.substr(0, key.size() - rest.size());
    page.Reset();
    page.request_index = rest.empty() ? first : 0;
    page.request_count = kRowsShown;
    if (CallLog_Search(&page, typed) != 1) return console.Say("no such page");
    console.Say(Printable(typed) + ": " + Counted(static_cast<std::size_t>(page.total), "hit"));
  }
  PrintHits(console.out, page);
}

template <class Page>
void PrintDialled(Console& console, int (*search)(Page*)) {
  Page page;
  page.request_count = kRowsShown * 10;
  const auto total = static_cast<std::size_t>(search(&page) == 1 ? page.total : 0);
  console.Say("most dialled: " + Counted(total, "number"));
  PrintHits(console.out, page);
}

void Dialled(Console& console, Arguments& arguments) {
  const bool cut = arguments.WordOr("all") == "top";
  arguments.Done();
  return cut ? PrintDialled(console, CallLog_SuperSearchRecentOutCall)
             : PrintDialled(console, CallLog_SearchRecentOutCall);
}

// Tells the module what a phone's directory tells it of one contact: three numbers at a time.
void ReportRenamed(const std::vector<std::string>& numbers, const std::string& name) {
  for (std::size_t i = 0; i < numbers.size(); i += 3) {
    CallLogUpdateData update;
    update.display_name = name;
    update.number_1 = numbers[i];
    if (i + 1 < numbers.size()) update.number_2 = numbers[i + 1];
    if (i + 2 < numbers.size()) update.number_3 = numbers[i + 2];
    CallLog_UpdateLog(update);
  }
}

void Rename(Console& console, Arguments& arguments) {
  const std::string number = arguments.Word("a number of the contact");
  const std::string name = arguments.WordOr("");
  arguments.Done();
  Contacts& contacts = console.phone.platform().contacts;
  std::vector<std::string> numbers = {number};
  if (const Contact* contact = contacts.FindByNumber(number)) numbers = contact->numbers;
  contacts.Rename(number, name);
  ReportRenamed(numbers, name);
  console.Say(Counted(numbers.size(), "number") +
              (name.empty() ? " without a name now" : " renamed"));
}

// The directory was loaded anew: every name in it is handed over at once.
void RefreshNames(Console& console) {
  std::list<SuperSearchItemData> names;
  for (const Contact& contact : console.phone.platform().contacts.All()) {
    for (const std::string& number : contact.numbers) {
      SuperSearchItemData& entry = names.emplace_back();
      entry.display_name = contact.name;
      entry.number = number;
    }
  }
  History().UpdateDispName(names);
  console.Say(std::to_string(names.size()) + " numbers handed over");
}

void ForgetNames(Console& console) {
  CallLog_ResetLogContactName();
  console.Say("every call shows its number");
}

}  // namespace

CommandGroup SearchCommands() {
  return {
      "names",
      "Search and names",
      {
          {"search", "KEY [FIRST]",
           "types a key letter by letter; digits search numbers and key-pad names", Search},
          {"dialled", "[all|top]", "the most dialled numbers, in full or the first ten", Dialled},
          {"rename", "NUMBER [NAME]", "the contact with this number gets another name, or none",
           Rename},
          {"refresh-names", "", "hands every name of the directory to the history", RefreshNames},
          {"forget-names", "", "the history forgets every contact's name", ForgetNames},
      }};
}

}  // namespace desk
