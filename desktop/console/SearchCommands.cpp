// Commands that search the history, and change the names in it.
#include "CallLog.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Screen.h"
#include "desktop/platform/Text.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;

constexpr int kRowsShown = 10;

template <class Page>
void PrintHits(std::ostream& out, const Page& page) {
  std::vector<std::vector<std::string>> rows;
  int row = page.request_index;
  for (const auto& item : page.items) {
    rows.push_back({std::to_string(row++), Printable(item.display_name), Printable(item.number)});
  }
  PrintTable(out, rows);
}

// Key by key, as the search page of a phone asks: each key narrows the list.
void Search(Console& console, Arguments& arguments) {
  const std::string key = arguments.Word("the key");
  const int first = ParseInt(arguments.WordOr("0"), "the first row");
  arguments.Done();
  CallLogSearchListData page;
  for (std::string_view rest = key; !rest.empty();) {
    TakeCharacter(&rest);
    const std::string typed = key.substr(0, key.size() - rest.size());
    page = CallLogSearchListData();
    page.request_index = rest.empty() ? first : 0;
    page.request_count = kRowsShown;
    if (CallLog_Search(&page, typed) != 1) {
      console.out << "  no such page\n";
      return;
    }
    console.out << "  " << Printable(typed) << ": " << page.total
                << (page.total == 1 ? " hit\n" : " hits\n");
  }
  PrintHits(console.out, page);
}

template <class Page>
void PrintDialled(std::ostream& out, int (*search)(Page*)) {
  Page page;
  page.request_count = kRowsShown * 10;
  const int total = search(&page) == 1 ? page.total : 0;
  out << "  most dialled: " << total << (total == 1 ? " number\n" : " numbers\n");
  PrintHits(out, page);
}

void Dialled(Console& console, Arguments& arguments) {
  const bool cut = arguments.WordOr("all") == "top";
  arguments.Done();
  if (cut) {
    PrintDialled(console.out, CallLog_SuperSearchRecentOutCall);
  } else {
    PrintDialled(console.out, CallLog_SearchRecentOutCall);
  }
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
  console.out << "  " << numbers.size() << (numbers.size() == 1 ? " number" : " numbers")
              << (name.empty() ? " without a name now\n" : " renamed\n");
}

// The directory was loaded anew: every name in it is handed over at once.
void RefreshNames(Console& console, Arguments& arguments) {
  arguments.Done();
  std::list<SuperSearchItemData> names;
  for (const Contact& contact : console.phone.platform().contacts.All()) {
    for (const std::string& number : contact.numbers) {
      SuperSearchItemData entry;
      entry.display_name = contact.name;
      entry.number = number;
      names.push_back(entry);
    }
  }
  CCallLogController::GetInstance()->UpdateDispName(names);
  console.out << "  " << names.size() << " numbers handed over\n";
}

void ForgetNames(Console& console, Arguments& arguments) {
  arguments.Done();
  CallLog_ResetLogContactName();
  console.out << "  every call shows its number\n";
}

}  // namespace

CommandGroup SearchCommands() {
  return {
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
