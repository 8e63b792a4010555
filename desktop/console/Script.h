// A phone driven by lines from a file or standard input.
#pragma once

#include <istream>
#include <ostream>
#include <string>

namespace desk {

struct Console;

// Runs every line, each shown before its output as a terminal would show it. A wrong line is
// reported to `errors` as "NAME:LINE: reason", and the script goes on; an interruption ends it. The
// number of wrong lines.
int RunScript(Console& console, std::istream& lines, const std::string& name, std::ostream& errors);

}  // namespace desk
