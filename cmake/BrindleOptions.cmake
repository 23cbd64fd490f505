# What can be chosen when the build is configured, and the flags that follow from it.
option(BRINDLE_TESTS "Build the tests" ON)
option(BRINDLE_BENCH "Build the benchmarks" OFF)
option(BRINDLE_FUZZ "Build the libFuzzer targets; needs clang" OFF)
option(BRINDLE_WERROR "Warnings are errors" OFF)
option(BRINDLE_LIBCXX "Build with libc++ where the compiler offers a choice" OFF)
set(BRINDLE_SANITIZE "" CACHE STRING "Value of -fsanitize=, empty for none")

# polkit reads actions from /usr/share alone, so a helper installed below /usr/local would refuse everybody but root.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(CMAKE_INSTALL_PREFIX "/usr" CACHE PATH "Where the programs and the helper's files are installed" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(brindle_warnings INTERFACE)
target_compile_options(brindle_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wswitch-enum
  # Builders in tests and records with defaults name only the members that matter; GCC's warning
  # about the others, part of -Wextra, fires even where every member has its own initialiser.
  -Wno-missing-field-initializers)
if(BRINDLE_WERROR)
  target_compile_options(brindle_warnings INTERFACE -Werror)
endif()
if(APPLE)
  add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in string concatenations that it inlines (GCC bug 105651), and with
  # optimisation or sanitizers uninitialised members of optionals and variants that are not engaged.
  target_compile_options(brindle_warnings INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()

add_library(brindle_flags INTERFACE)
if(BRINDLE_SANITIZE)
  target_compile_options(brindle_flags INTERFACE -fsanitize=${BRINDLE_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(brindle_flags INTERFACE -fsanitize=${BRINDLE_SANITIZE})
  if(BRINDLE_SANITIZE MATCHES "undefined")
    target_compile_options(brindle_flags INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()
if(BRINDLE_LIBCXX)
  # Everything, Debian's GoogleTest included, must share one standard library, so the tests are compiled
  # from the source packages of their frameworks (see BrindleDependencies.cmake).
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-stdlib=libc++>)
  add_link_options(-stdlib=libc++)
endif()
