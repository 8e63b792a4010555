// A phone driven by lines from a file, a pipe or standard input.
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "desktop/console/Console.h"

namespace desk {

// Runs every line, each shown before its output as a terminal would show it. A wrong line is
// reported to `errors` as "NAME:LINE: reason", and the script goes on; an interruption ends it. The
// number of wrong lines.
int RunScript(Console& console, std::istream& lines, const std::string& name, std::ostream& errors);

// The same for a file, or standard input ("-"): the phone works while more of it is waited for. The
// files that a script names stand beside it. Throws CommandError when it cannot be opened.
int RunScriptFile(Console console, const std::string& name, std::ostream& errors);

}  // namespace desk
