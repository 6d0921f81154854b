# Debian's cross compiler and an emulator for what it makes. The environment names the private root:
# LUMOR_ARM64_ROOT.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_ASM_COMPILER aarch64-linux-gnu-gcc)

set(sRoot $ENV{LUMOR_ARM64_ROOT})
set(CMAKE_FIND_ROOT_PATH ${sRoot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(ENV{PKG_CONFIG_LIBDIR} ${sRoot}/usr/lib/aarch64-linux-gnu/pkgconfig:${sRoot}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sRoot})
# Libraries that libraries need are looked for there as well.
add_link_options(-Wl,-rpath-link,${sRoot}/usr/lib/aarch64-linux-gnu:${sRoot}/lib/aarch64-linux-gnu)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${sRoot})
