// The local history, and call types as a user names them.
#pragma once

#include <string>

#include "CallLogController.h"

namespace desk {

inline NS_CALLLOG::CCallLogController& History() {
  return *NS_CALLLOG::CCallLogController::GetInstance();
}

// "outgoing", "missed" ...; the number for any other type.
std::string TypeName(int type);

// 1 to 4 for "outgoing", "missed", "received", "forwarded", and 0 for "all"; a number stands for
// itself, whatever it is. Throws CommandError for anything else.
int ParseCallType(const std::string& text);

// The click action that opens the list of a type: "OpenSubPage(call_log_2)" for "missed". A text
// with a bracket is taken for a click action and stays as it is.
std::string ListAction(const std::string& text);

}  // namespace desk
