// What the module gives in a row, and what the plain model has for it, as one text.
#pragma once

#include <string>

#include "CallLogRecords.h"
#include "platform/SettingTime.h"
#include "tests/support/PlainModel.h"

namespace desk {

inline std::string DurationText(int seconds) {
  const auto digits = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n); };
  if (seconds < 0) return "";
  return digits(seconds / 3600) + ":" + digits(seconds / 60 % 60) + ":" + digits(seconds % 60);
}

template <class Row>
std::string TextOf(const Row& row) {
  return row.display_name + ", " + row.number;
}
inline std::string TextOf(const ForwardedCallData& row) {
  return row.display_name + ", " + row.number + ", " + row.forward_display_name;
}
inline std::string TextOf(const CallLogSimpleData& row) {
  return row.display_name + ", " + row.time_text + ", " + std::to_string(row.type);
}
inline std::string RowOf(const PlainCall& call) {
  return call.Name() + ", " + Setting_CallLogTime2String(call.born_tick, " ") + ", " +
         std::to_string(call.type);
}

}  // namespace desk
