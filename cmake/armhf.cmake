# 32-bit phones.
set(target armhf)
set(triplet arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
