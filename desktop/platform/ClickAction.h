// Reads the id out of the action text of a click ("OpenSubPage(call_log_2)").
// Knows nothing of pages or what an id means: that is the caller's.
#pragma once

#include <string_view>

namespace desk {

// `pattern` is a word with a final "x" in place of the number. The first place in `action` where
// that word stands whole, with a decimal number that fits an int, gives the number; -1 when there
// is none. Words consist of ASCII letters, digits and underscores; every other byte parts them.
int ParseIdByClickAction(std::string_view action, std::string_view pattern);

}  // namespace desk
