// The phone's two clocks: a monotonic one that drives timers, and the wall clock that stamps calls.
#pragma once

#include <chrono>
#include <ctime>

namespace desk {

using Milliseconds = std::chrono::milliseconds;

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Milliseconds Monotonic() const = 0;
  virtual std::time_t Wall() const = 0;
};

// The machine's clocks.
class RealClock : public Clock {
 public:
  Milliseconds Monotonic() const override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Milliseconds>(now);
  }
  std::time_t Wall() const override { return std::time(nullptr); }
};

// Clocks that stand still until somebody moves them. Advancing moves both; setting the wall clock,
// as a user or a time server would, leaves the monotonic one alone.
class ManualClock : public Clock {
 public:
  explicit ManualClock(std::time_t wall) : wallAtZero_(wall) {}

  Milliseconds Monotonic() const override { return now_; }
  std::time_t Wall() const override { return wallAtZero_ + Seconds(); }

  void Advance(Milliseconds by) { now_ += by; }
  void SetWall(std::time_t wall) { wallAtZero_ = wall - Seconds(); }

 private:
  std::time_t Seconds() const {
    return std::chrono::duration_cast<std::chrono::seconds>(now_).count();
  }

  Milliseconds now_{0};
  std::time_t wallAtZero_;
};

}  // namespace desk
