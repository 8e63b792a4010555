// The call log types by name.
#pragma once

namespace NS_CALLLOG {

inline constexpr int kAllTypes = 0;  // only where records are selected
inline constexpr int kOutgoing = 1;
inline constexpr int kMissed = 2;
inline constexpr int kReceived = 3;
inline constexpr int kForwarded = 4;

}  // namespace NS_CALLLOG
