// How the module writes its files.
#pragma once

#include <string>

namespace NS_CALLLOG {

// Writes the file anew, in place, with one write. Allocates nothing once the file is emptied, so
// that no save that runs out of memory costs what was in it. Nothing tells whether the disk took
// it.
void RewriteFile(const std::string& path, const std::string& text);

}  // namespace NS_CALLLOG
