// A platform that costs as little as it can, so that what is measured is the module: no contacts,
// no trace, no display behind the idle texts, transfers that end when they are told to. What its
// operations promise is declared in platform/.
#pragma once

namespace bench {

// The document of the transfer that the module has started last is there.
void CompleteTransfer();

}  // namespace bench
