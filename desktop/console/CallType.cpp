// Call types and list actions from what a user types.
#include "desktop/console/CallType.h"

#include "desktop/console/CommandLine.h"
#include "desktop/console/Screen.h"

namespace desk {

int ParseCallType(const std::string& text) {
  constexpr int kMaxType = 4;
  for (int type = 0; type <= kMaxType; ++type) {
    if (text == TypeName(type)) return type;
  }
  if (text.find_first_not_of("-0123456789") != std::string::npos) {
    throw CommandError("a call type is outgoing, missed, received, forwarded or all, not \"" +
                       text + "\"");
  }
  return ParseInt(text, "the call type");
}

std::string ListAction(const std::string& text) {
  if (text.find('(') != std::string::npos) return text;
  return ListAction(ParseCallType(text));
}

std::string ListAction(int type) { return "OpenSubPage(call_log_" + std::to_string(type) + ")"; }

}  // namespace desk
