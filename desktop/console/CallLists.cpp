// Call types and list actions from what a user types.
#include "desktop/console/CallLists.h"

#include <algorithm>
#include <iterator>

#include "desktop/console/CommandLine.h"

namespace desk {
namespace {

constexpr const char* kTypes[] = {"all", "outgoing", "missed", "received", "forwarded"};

}  // namespace

std::string TypeName(int type) {
  return type >= 0 && type < static_cast<int>(std::size(kTypes)) ? kTypes[type]
                                                                 : std::to_string(type);
}

int ParseCallType(const std::string& text) {
  const auto* const named = std::find(std::begin(kTypes), std::end(kTypes), text);
  if (named != std::end(kTypes)) return static_cast<int>(named - kTypes);
  if (text.find_first_not_of("-0123456789") != std::string::npos) {
    throw CommandError("a call type is outgoing, missed, received, forwarded or all, not \"" +
                       text + "\"");
  }
  return ParseInt(text, "the call type");
}

std::string ListAction(const std::string& text) {
  if (text.find('(') != std::string::npos) return text;
  return "OpenSubPage(call_log_" + std::to_string(ParseCallType(text)) + ")";
}

}  // namespace desk
