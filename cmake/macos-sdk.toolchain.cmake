# Compiles for macOS on a Linux machine with clang 16 and lld 16 against the headers of a macOS SDK; used by
# scripts/check-macos and by nothing else. On a Mac no toolchain file is needed.
#
# BRINDLE_MACOS_SYSROOT: a folder laid out as an SDK (usr/include, usr/lib, System/Library/Frameworks).
# BRINDLE_MACOS_ARCH:    arm64 or x86_64.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 23.0)  # the kernel of macOS 14
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES BRINDLE_MACOS_SYSROOT BRINDLE_MACOS_ARCH)
set(CMAKE_SYSTEM_PROCESSOR "${BRINDLE_MACOS_ARCH}")
set(CMAKE_OSX_SYSROOT "${BRINDLE_MACOS_SYSROOT}" CACHE PATH "")
set(CMAKE_OSX_ARCHITECTURES "${BRINDLE_MACOS_ARCH}" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET 14.0 CACHE STRING "")

foreach(language IN ITEMS C CXX OBJC OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET "${BRINDLE_MACOS_ARCH}-apple-macos14.0")
endforeach()
find_program(CMAKE_C_COMPILER NAMES clang-16 REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES clang++-16 REQUIRED)
find_program(CMAKE_OBJCXX_COMPILER NAMES clang++-16 REQUIRED)
foreach(tool IN ITEMS AR RANLIB NM STRIP OTOOL)
  string(TOLOWER "llvm-${tool}-16" program)
  find_program(CMAKE_${tool} NAMES "${program}" REQUIRED)
endforeach()
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool-16 REQUIRED)

# __ENVIRONMENT_OS_VERSION_MIN_REQUIRED__: from version 17 on clang sets it itself, and the SDK's headers take a
# compiler without it for one that targets the oldest system of all.
# The SDK's libc++ by name: clang would otherwise prefer one that is installed beside it.
set(brindle_macos_flags "-D__ENVIRONMENT_OS_VERSION_MIN_REQUIRED__=140000")
set(brindle_macos_cxx_flags "${brindle_macos_flags} -nostdinc++ -isystem ${BRINDLE_MACOS_SYSROOT}/usr/include/c++/v1")
set(CMAKE_C_FLAGS_INIT "${brindle_macos_flags}")
set(CMAKE_CXX_FLAGS_INIT "${brindle_macos_cxx_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${brindle_macos_cxx_flags}")

# The SDK has the frameworks' stubs but not those of the system library and of libc++, and the libraries from
# outside exist here as headers alone: their functions are left to be looked up when the program starts.
# scripts/check-macos reads the list of what was left and refuses anything that should have been found.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib -Wl,-undefined,dynamic_lookup")

# Nothing of this machine is for the target: not its headers, its libraries, its packages.
set(CMAKE_FIND_ROOT_PATH "${BRINDLE_MACOS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
