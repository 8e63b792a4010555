// Loses memory, so that the leak check has something to find.
#include <cstdlib>

void* volatile kept = nullptr;

int main() {
  for (int i = 0; i < 100; ++i) kept = std::malloc(1);
}
