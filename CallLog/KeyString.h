// The key-pad form of a record's name.
#pragma once

#include <new>
#include <string>

#include "platform/CommonUnits.h"

namespace NS_CALLLOG {

// Empty when the platform fails on the name: a call that no typed digits find is better than none.
inline std::string KeyStringOf(const std::string& name) {
  try {
    return CommonUnits_ToKeyString(name);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace NS_CALLLOG
