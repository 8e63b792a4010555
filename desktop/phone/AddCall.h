// A finished call into the history, with the reason why it is not kept.
#pragma once

#include <string>

#include "CallLogRecords.h"

namespace desk {

class Platform;

// Empty when the module has stored the call; otherwise why it refused it, in a few words.
std::string AddCall(Platform& platform, const CallLogAddItemData& call);

}  // namespace desk
