// FNV-1a: the same number for a text in every build, so that it can be kept in a file.
#pragma once

#include <cstdint>
#include <string_view>

namespace desk {

inline std::uint64_t TextHash(std::string_view text, std::uint64_t hash = 0xCBF29CE484222325) {
  for (const char byte : text) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  }
  return hash;
}

}  // namespace desk
