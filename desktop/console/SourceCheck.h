// Whether a source of server call logs can be used as it is entered. The module joins its fields to
// one URL and escapes nothing: what cannot travel there would go to another server, as another
// user, or nowhere.
#pragma once

#include <string>

#include "CallLogRecords.h"

namespace desk {

// Why not, in one line; empty when it can. Fields that are still empty are no reason.
std::string WhyUnusable(const BroadSoftConfigItem& source);

// The URL that the module fetches the source from; empty when it has no server.
std::string SourceUrl(const BroadSoftConfigItem& source);

}  // namespace desk
