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

  bool operator==(const TalkCall& other) const {
    return number == other.number && name == other.name && accountId == other.accountId &&
           started == other.started;
  }
};

struct Talk {
  std::optional<TalkCall> call;           // the call that is going on
  std::optional<std::string> dialScreen;  // the number in the dial screen, when that is open

  bool operator==(const Talk& other) const {
    return call == other.call && dialScreen == other.dialScreen;
  }
};

}  // namespace desk
