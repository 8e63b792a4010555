// A progress bar on one line of a terminal, for work that takes a while. Whether the output is a
// terminal is the caller's to know.
#pragma once

#include <cstdint>
#include <ostream>

namespace desk {

// Draws at most once per percent, and erases its line when it goes. Elsewhere than at a terminal,
// and for a total below 4 MB (or unknown: 0), it prints nothing.
class ProgressBar {
 public:
  ProgressBar(std::ostream& out, bool atTerminal, std::uint64_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Update(std::uint64_t done);

 private:
  std::ostream& out_;
  std::uint64_t total_;
  bool enabled_;
  int shownPercent_ = -1;
};

}  // namespace desk
