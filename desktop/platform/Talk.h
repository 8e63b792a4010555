// The talk logic: one call at a time, from the dialling to the hang-up.
#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace desk {

struct TalkCall {
  std::string number;
  std::string name;
  int accountId = -1;  // -1: the default account
  std::time_t started = 0;
};

struct Talk {
  std::optional<TalkCall> call;           // the call that is going on
  std::optional<std::string> dialScreen;  // the number in the dial screen, when that is open
};

}  // namespace desk
