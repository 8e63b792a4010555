#include "desktop/console/Pager.h"

#include <algorithm>
#include <utility>

namespace desk {

Pager::Pager(std::ostream* out, ScreenSize screen, WantsMore wantsMore)
    : out_(*out), screen_(*out->rdbuf(this)), size_(screen), wantsMore_(std::move(wantsMore)) {}

Pager::~Pager() { out_.rdbuf(&screen_); }

Pager::int_type Pager::overflow(int_type letter) {
  if (over_ || letter == traits_type::eof()) return traits_type::not_eof(letter);
  if (line_.empty() && size_.rows > 2 && row_ >= size_.rows - 1) {
    row_ = 0;
    screen_.pubsync();
    over_ = !wantsMore_();
    if (over_) return letter;
  }
  line_.push_back(traits_type::to_char_type(letter));
  if (letter == '\n') {
    row_ += 1 + std::max(0, static_cast<int>(Width(line_)) - 1) / size_.columns;
    line_.clear();
  }
  return screen_.sputc(traits_type::to_char_type(letter));
}

int Pager::sync() { return screen_.pubsync(); }

}  // namespace desk
