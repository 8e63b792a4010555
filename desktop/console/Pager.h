// Shows what is printed a screen at a time.
#pragma once

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>

#include "desktop/console/Columns.h"

namespace desk {

// What is printed to `out` while it exists waits after each screen until the user wants more; what
// is not wanted any more is left out.
class Pager : public std::streambuf {
 public:
  using WantsMore = std::function<bool()>;

  Pager(std::ostream* out, ScreenSize screen, WantsMore wantsMore);
  ~Pager() override;
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;

 protected:
  int_type overflow(int_type letter) override;
  int sync() override;

 private:
  std::ostream& out_;
  std::streambuf& screen_;
  const ScreenSize size_;
  const WantsMore wantsMore_;
  int row_ = 0;
  std::string line_;  // the last one, as far as it has come
  bool over_ = false;
};

}  // namespace desk
