// The shared helpers of the UI process, over the text services.
#include "platform/CommonAPI.h"

#include <climits>

#include "desktop/platform/ClickAction.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/contacts/TextMatch.h"

int CommonAPI_ParseIdByClickAction(const std::string& action, const std::string& pattern) {
  return desk::ParseIdByClickAction(action, pattern);
}

bool CommonAPI_GetFromAndToIndex(int* from, int* to, int request_index, int request_count,
                                 int /*total*/) {
  if (from == nullptr || to == nullptr || request_index < 0 || request_count < 1) return false;
  *from = request_index;
  *to = request_count > INT_MAX - request_index ? INT_MAX : request_index + request_count;
  return true;
}

std::string CommonAPI_FormatString(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = desk::FormatV(format, arguments);
  va_end(arguments);
  return text;
}

std::string CommonAPI_StringConvert(const std::string& text, StringConvertType type) {
  return type == STRING_CONVERT_SEARCH_KEY ? desk::FoldText(text) : text;
}

int CommonAPI_StringCompare(const std::string& text, const std::string& key, int position,
                            int length, bool caseSensitive) {
  if (position < 0 || length < 0 || static_cast<std::size_t>(position) > text.size()) return 1;
  const auto tail = std::string_view(text).substr(static_cast<std::size_t>(position));
  const auto wanted = std::string_view(key).substr(0, static_cast<std::size_t>(length));
  const bool begins =
      caseSensitive ? tail.substr(0, wanted.size()) == wanted : desk::BeginsWith(tail, wanted);
  return begins ? 0 : 1;
}
