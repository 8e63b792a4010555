// What the platform was asked to do, in order, one line each: the desktop phone shows it, tests
// read orders from it. Keeps the newest lines only, and the beginning of each, so that it can run
// for months, whatever callers send.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace desk {

class Journal {
 public:
  static constexpr std::size_t kCapacity = 10000;
  static constexpr std::size_t kLineBytes = 1000;

  void Add(std::string line);  // any thread

  std::vector<std::string> Lines() const;
  void Clear();

 private:
  mutable std::mutex mutex_;
  std::deque<std::string> lines_;
};

}  // namespace desk
