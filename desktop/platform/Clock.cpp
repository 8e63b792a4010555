// The machine's clocks, and the ones that are moved by hand.
#include "desktop/platform/Clock.h"

namespace desk {
namespace {

std::time_t WholeSeconds(Milliseconds span) {
  return std::chrono::duration_cast<std::chrono::seconds>(span).count();
}

}  // namespace

Milliseconds RealClock::Monotonic() const {
  return std::chrono::duration_cast<Milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

std::time_t RealClock::Wall() const { return std::time(nullptr); }

std::time_t ManualClock::Wall() const { return wallAtZero_ + WholeSeconds(now_); }

void ManualClock::SetWall(std::time_t wall) { wallAtZero_ = wall - WholeSeconds(now_); }

}  // namespace desk
