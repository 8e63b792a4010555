# 64-bit phones.
set(target aarch64)
set(triplet aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
