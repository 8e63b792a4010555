// Tables and boxes of text. Whatever a caller or a server chose is made printable here.
#include "desktop/console/Screen.h"

#include <algorithm>

#include "desktop/console/CallLists.h"
#include "desktop/console/Columns.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

std::string Join(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) joined += (joined.empty() ? "" : ", ") + part;
  return joined;
}

// Fit for one cell of a table: printable, and no wider than a screen's row.
std::string Cell(const std::string& text) {
  constexpr std::size_t kWidest = 60;
  return CutTo(Printable(text), kWidest);
}

// Callers who withhold their number have neither number nor name.
std::string CallerCell(const std::string& text) { return text.empty() ? "withheld" : Cell(text); }

std::string TypeCell(int type) { return type != 0 ? TypeName(type) : std::string(); }

std::vector<std::string> Statuses(const Display& display) {
  std::vector<std::string> statuses;
  for (const auto& [id, text] : display.statuses) statuses.push_back(Printable(text));
  return statuses;
}

// `more` says what stands in a row behind the caller.
template <class Callers, class More>
void PrintNewCalls(std::ostream& out, const char* kind, const Callers& callers, More more) {
  Table rows;
  for (const auto& row : callers) {
    rows.push_back({std::to_string(row.count) + "x", CallerCell(row.display_name), Cell(row.number),
                    more(row)});
  }
  out << "  new " << kind << " calls: " << Counted(rows.size(), "caller") << "\n";
  PrintTable(out, rows);
}

}  // namespace

std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string IdleLine(const Display& display) {
  std::vector<std::string> parts = Statuses(display);
  if (parts.empty()) parts.push_back("nothing new");
  parts.push_back(std::string("LED ") + OnOff(!display.ledEvents.empty()));
  parts.push_back(std::string("backlight ") + OnOff(!display.backlightEvents.empty()));
  for (const auto& [action, title] : display.menuTitles) {
    parts.push_back("menu \"" + Printable(title) + "\"");
  }
  return Join(parts);
}

void PrintIdleScreen(std::ostream& out, const Display& display, std::time_t now) {
  constexpr std::size_t kWidth = 36;
  const std::string border = "  +" + std::string(kWidth + 2, '-') + "+\n";
  out << border;
  for (const std::string& line :
       {FullTimeText(now, "  "), std::string(), Join(Statuses(display))}) {
    out << "  | " << Padded(line, kWidth) << " |\n";
  }
  out << border << "    LED " << OnOff(!display.ledEvents.empty()) << "   backlight "
      << OnOff(!display.backlightEvents.empty()) << "\n";
}

void PrintTable(std::ostream& out, const Table& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  for (const auto& row : rows) {
    std::string line = " ";
    for (std::size_t i = 0; i < row.size(); ++i) line += " " + Padded(row[i], widths[i] + 1);
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << "\n";
  }
}

void PrintCallList(std::ostream& out, const std::string& title, const CallLogSimpleListData& page) {
  const auto total = static_cast<std::size_t>(page.total);
  out << "  " << title << ": " << Counted(total, "call");
  if (page.items.size() < total) out << ", " << page.items.size() << " shown";
  out << "\n";
  Table rows;
  int row = page.request_index;
  for (const CallLogSimpleData& item : page.items) {
    rows.push_back({std::to_string(row++), TypeCell(item.type), Cell(item.time_text),
                    CallerCell(item.display_name)});
  }
  PrintTable(out, rows);
}

void PrintDetail(std::ostream& out, const CallLogDetailData& detail) {
  Table rows;
  const auto add = [&](const char* name, const std::string& value) {
    if (!value.empty()) rows.push_back({name, Printable(value)});
  };
  add("type", TypeCell(detail.type));
  add("name", detail.display_name);
  add("number", detail.number.empty() ? "withheld" : detail.number);
  add("country code", detail.country_code);
  add("server", detail.server);
  add("time", detail.time_text);
  add("duration", detail.duration_text);
  add("photo", detail.image_path);
  PrintTable(out, rows);
}

void PrintMissed(std::ostream& out, const MissedNotifyListData& list) {
  PrintNewCalls(out, "missed", list.items, [](const MissedCallData&) { return std::string(); });
}

void PrintForwarded(std::ostream& out, const ForwardedNotifyList& list) {
  PrintNewCalls(out, "forwarded", list.items, [](const ForwardedCallData& row) {
    return "to " + Cell(row.forward_display_name);
  });
}

}  // namespace desk
