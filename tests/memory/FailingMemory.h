// Memory of this test program that runs out on demand.
#pragma once

namespace desk {

enum class Shortage {
  kOnce,    // one allocation fails
  kLasting  // it and every further one
};

// From here on, on this thread, allocation number `n` fails, from 1.
void BeginShortage(int n, Shortage shortage);

// No allocation fails any more. Whether one has failed.
bool EndShortage();

}  // namespace desk
