// Tables and boxes of text. Whatever a caller or a server chose is made printable here.
#include "desktop/console/Screen.h"

#include <utf8proc.h>

#include <algorithm>

#include "desktop/platform/Text.h"
#include "desktop/platform/TimeText.h"

namespace desk {
namespace {

std::string Join(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) joined += (joined.empty() ? "" : ", ") + part;
  return joined;
}

// Terminal columns of printable UTF-8.
std::size_t Width(std::string_view text) {
  int width = 0;
  while (!text.empty()) width += std::max(0, utf8proc_charwidth(TakeCharacter(&text).code));
  return static_cast<std::size_t>(width);
}

std::string Padded(const std::string& text, std::size_t width) {
  const std::size_t used = Width(text);
  return text + std::string(used < width ? width - used : 0, ' ');
}

// Fit for one cell of a table: printable, and no longer than a screen's row.
std::string Cell(const std::string& text) {
  constexpr std::size_t kLongest = 60;
  std::string cell = Printable(text);
  if (cell.size() <= kLongest) return cell;
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(cell[end]) & 0xC0u) == 0x80u) --end;
  return cell.substr(0, end) + "...";
}

void PrintRows(std::ostream& out, const std::string& title, std::size_t count,
               const std::vector<std::vector<std::string>>& rows) {
  out << "  " << title << ": " << count << (count == 1 ? " caller" : " callers") << "\n";
  PrintTable(out, rows);
}

}  // namespace

std::string IdleLine(const Display& display) {
  std::vector<std::string> parts;
  for (const auto& [id, text] : display.statuses) parts.push_back(Printable(text));
  if (parts.empty()) parts.push_back("nothing new");
  parts.push_back(display.ledEvents.empty() ? "LED off" : "LED on");
  parts.push_back(display.backlightEvents.empty() ? "backlight off" : "backlight on");
  for (const auto& [action, title] : display.menuTitles) {
    parts.push_back("menu \"" + Printable(title) + "\"");
  }
  return Join(parts);
}

void PrintIdleScreen(std::ostream& out, const Display& display, std::time_t now) {
  constexpr std::size_t kWidth = 36;
  std::vector<std::string> statuses;
  for (const auto& [id, text] : display.statuses) statuses.push_back(Printable(text));
  const std::string border = "  +" + std::string(kWidth + 2, '-') + "+\n";
  out << border;
  for (const std::string& line : {FullTimeText(now, "  "), std::string(), Join(statuses)}) {
    out << "  | " << Padded(line, kWidth) << " |\n";
  }
  out << border;
  out << "    LED " << (display.ledEvents.empty() ? "off" : "on") << "   backlight "
      << (display.backlightEvents.empty() ? "off" : "on") << "\n";
}

void PrintTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows) {
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
  out << "  " << title << ": " << page.total << (page.total == 1 ? " call" : " calls");
  if (page.items.size() < static_cast<std::size_t>(page.total)) {
    out << ", " << page.items.size() << " shown";
  }
  out << "\n";
  std::vector<std::vector<std::string>> rows;
  int row = page.request_index;
  for (const CallLogSimpleData& item : page.items) {
    const std::string type = item.type != 0 ? TypeName(item.type) : std::string();
    rows.push_back({std::to_string(row++), type, Cell(item.time_text), Cell(item.display_name)});
  }
  PrintTable(out, rows);
}

void PrintDetail(std::ostream& out, const CallLogDetailData& detail) {
  std::vector<std::vector<std::string>> rows;
  const auto add = [&](const char* name, const std::string& value) {
    if (!value.empty()) rows.push_back({name, Cell(value)});
  };
  add("type", detail.type != 0 ? TypeName(detail.type) : std::string());
  add("name", detail.display_name);
  add("number", detail.number);
  add("country code", detail.country_code);
  add("server", detail.server);
  add("time", detail.time_text);
  add("duration", detail.duration_text);
  add("photo", detail.image_path);
  PrintTable(out, rows);
}

void PrintMissed(std::ostream& out, const MissedNotifyListData& list) {
  std::vector<std::vector<std::string>> rows;
  for (const MissedCallData& row : list.items) {
    rows.push_back({std::to_string(row.count) + "x", Cell(row.display_name), Cell(row.number)});
  }
  PrintRows(out, "new missed calls", list.items.size(), rows);
}

void PrintForwarded(std::ostream& out, const ForwardedNotifyList& list) {
  std::vector<std::vector<std::string>> rows;
  for (const ForwardedCallData& row : list.items) {
    rows.push_back({std::to_string(row.count) + "x", Cell(row.display_name), Cell(row.number),
                    "to " + Cell(row.forward_display_name)});
  }
  PrintRows(out, "new forwarded calls", list.items.size(), rows);
}

std::string TypeName(int type) {
  switch (type) {
    case 0: return "all";
    case 1: return "outgoing";
    case 2: return "missed";
    case 3: return "received";
    case 4: return "forwarded";
    default: return std::to_string(type);
  }
}

}  // namespace desk
