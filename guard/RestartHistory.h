// How HistoryGuard::Start() starts the module of this process.
#pragma once

namespace NS_GUARD {

// Starts the local history anew, so that it loads its file. How many records it lists then; 0 also
// when there is no memory for it. Nothing is thrown. Thread: the one that enters the module.
int RestartHistory();

}  // namespace NS_GUARD
