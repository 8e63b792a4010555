// Small file helpers of the platform.
#pragma once

namespace ETL_MiscHelper {

// True when something exists at `path` (a link is followed). False for null and for an empty path.
bool pathFileExist(const char* path);

}  // namespace ETL_MiscHelper
