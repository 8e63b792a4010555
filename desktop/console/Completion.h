// What Tab makes of a line that has been begun: each word is completed to what its command takes
// in its place.
#pragma once

#include <string>

#include "desktop/console/Console.h"
#include "desktop/console/LineEditor.h"

namespace desk {

// `before` is the line up to the cursor.
Completions Complete(const Console& console, const std::string& before);

}  // namespace desk
