// How the phone's screens look as text.
#pragma once

#include <ctime>
#include <ostream>
#include <string>
#include <vector>

#include "CallLogRecords.h"
#include "desktop/platform/Display.h"

namespace desk {

using Table = std::vector<std::vector<std::string>>;  // rows of cells

inline const char* OnOff(bool on) { return on ? "on" : "off"; }

// "1 call", "2 calls".
std::string Counted(std::size_t count, const std::string& what);

// "1 Missed, LED on, backlight on": the idle screen in one line.
std::string IdleLine(const Display& display);

// The idle screen as a box, with the time and date.
void PrintIdleScreen(std::ostream& out, const Display& display, std::time_t now);

// One page of a call list, its rows numbered as in the whole list.
void PrintCallList(std::ostream& out, const std::string& title, const CallLogSimpleListData& page);

void PrintDetail(std::ostream& out, const CallLogDetailData& detail);

void PrintMissed(std::ostream& out, const MissedNotifyListData& list);
void PrintForwarded(std::ostream& out, const ForwardedNotifyList& list);

// In columns as wide as their widest cell, as a terminal shows it.
void PrintTable(std::ostream& out, const Table& rows);

}  // namespace desk
