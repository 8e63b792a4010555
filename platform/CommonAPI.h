// Helpers shared by the modules of the UI process. Any thread. Texts are what callers, servers and
// users chose: any bytes, any length, must not throw but for want of memory.
#pragma once

#include <string>

// The number that stands in `action` where `pattern` has its "x": with the pattern "call_log_x" the
// action "OpenSubPage(call_log_2)" gives 2. Negative when the action carries no such id, another
// id, no digits after it, or a value beyond int.
int CommonAPI_ParseIdByClickAction(const std::string& action, const std::string& pattern);

// Turns a page request into rows: `*from` the first row, `*to` the row after the last. False, with
// both untouched, when the request is refused. `total` is a hint of the caller's; the module passes
// 100 for its local lists, which can hold up to 400 rows when all types are shown, so an
// implementation that cuts `*to` at `total` makes the rows beyond it unreachable.
bool CommonAPI_GetFromAndToIndex(int* from, int* to, int request_index, int request_count,
                                 int total);

// printf into a string.
std::string CommonAPI_FormatString(const char* format, ...) __attribute__((format(printf, 1, 2)));

enum StringConvertType {
  STRING_CONVERT_NONE = 0,        // a copy
  STRING_CONVERT_SEARCH_KEY = 1,  // a key that a user types, in the form in which keys are compared
};

// `text` converted as `type` says.
std::string CommonAPI_StringConvert(const std::string& text, StringConvertType type);

// 0 exactly when `text`, from byte `position` on, begins with `key` (`length` is the key's length
// in bytes); non-zero otherwise. `caseSensitive` false ignores the difference of upper and lower
// case, and whatever else a user who types a key would not tell apart.
int CommonAPI_StringCompare(const std::string& text, const std::string& key, int position,
                            int length, bool caseSensitive);
