// For the platform's functions that never throw: a line of trace or a light is not worth a phone.
#pragma once

#include <exception>

namespace desk {

template <class Operation>
void Quietly(const Operation& operation) noexcept {
  try {
    operation();
  } catch (const std::exception&) {
  }
}

}  // namespace desk
