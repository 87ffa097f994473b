# The board: 32-bit little-endian MIPS, built with Debian's cross compiler.
#   cmake -S . -B build-mips -DCMAKE_TOOLCHAIN_FILE=cmake/mipsel-linux-gnu.cmake
# The target's libpcre comes from scripts/deps --mips (VESK_MIPS_SYSROOT);
# the tests run under qemu-mipsel inside the emulated device.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(VESK_TRIPLET mipsel-linux-gnu)

set(CMAKE_C_COMPILER ${VESK_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${VESK_TRIPLET}-g++)

if(NOT VESK_MIPS_SYSROOT)
  if(DEFINED ENV{VESK_MIPS_SYSROOT})
    set(VESK_MIPS_SYSROOT $ENV{VESK_MIPS_SYSROOT})
  else()
    set(VESK_MIPS_SYSROOT /opt/vesk/mipsel)
  endif()
endif()
set(VESK_MIPS_SYSROOT ${VESK_MIPS_SYSROOT} CACHE PATH "Unpacked mipsel packages the cross build links (scripts/deps --mips)")
# try_compile projects read this file again and need the same root.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VESK_MIPS_SYSROOT)

# The cross compiler's own C library, then our unpacked packages.
set(VESK_MIPS_LIBC /usr/${VESK_TRIPLET})
set(CMAKE_FIND_ROOT_PATH ${VESK_MIPS_LIBC} ${VESK_MIPS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config answers for the target only.
set(ENV{PKG_CONFIG_LIBDIR} ${VESK_MIPS_SYSROOT}/usr/lib/${VESK_TRIPLET}/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VESK_MIPS_SYSROOT})
unset(ENV{PKG_CONFIG_PATH})

# Programs linked against libvesk must find its libpcre when linking.
set(VESK_MIPS_LIBDIRS ${VESK_MIPS_SYSROOT}/lib/${VESK_TRIPLET} ${VESK_MIPS_SYSROOT}/usr/lib/${VESK_TRIPLET})
foreach(dir IN LISTS VESK_MIPS_LIBDIRS)
  string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,-rpath-link,${dir}")
  string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,-rpath-link,${dir}")
endforeach()

# User-mode emulation: the loader and C library from the cross toolchain,
# libpcre from the sysroot. VDEV_QEMU tells the tests what runs them.
string(REPLACE ";" ":" VESK_MIPS_LD_PATH "${VESK_MIPS_LIBDIRS}")
set(CMAKE_CROSSCOMPILING_EMULATOR
  env VDEV_QEMU=qemu-mipsel qemu-mipsel -L ${VESK_MIPS_LIBC} -E LD_LIBRARY_PATH=${VESK_MIPS_LD_PATH})
