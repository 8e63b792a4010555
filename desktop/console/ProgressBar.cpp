// The bar's drawing.
#include "desktop/console/ProgressBar.h"

#include <algorithm>
#include <string>

namespace desk {
namespace {

constexpr std::uint64_t kWorthShowing = 4 * 1024 * 1024;

}  // namespace

ProgressBar::ProgressBar(std::ostream& out, bool atTerminal, std::uint64_t total)
    : out_(out), total_(total), enabled_(atTerminal && total >= kWorthShowing) {}

ProgressBar::~ProgressBar() {
  if (shownPercent_ >= 0) out_ << "\r\033[K" << std::flush;
}

void ProgressBar::Update(std::uint64_t done) {
  if (!enabled_) return;
  const double part = static_cast<double>(std::min(done, total_)) / static_cast<double>(total_);
  const int percent = static_cast<int>(part * 100);
  if (percent == shownPercent_) return;
  shownPercent_ = percent;
  const auto filled = static_cast<std::size_t>(percent / 2);
  const std::string number = std::to_string(percent);
  out_ << "\r[" << std::string(filled, '#') << std::string(50 - filled, ' ') << "] "
       << std::string(3 - number.size(), ' ') << number << " %" << std::flush;
}

}  // namespace desk
