# Answers find_package() for scripts/check-macos: the libraries from outside as header-only targets, because their
# headers are portable and no Mach-O build of them is at hand. Read through CMAKE_PROJECT_TOP_LEVEL_INCLUDES.
#
# Each library's headers, and no other of this machine, are linked into one folder below the build folder.
set(BRINDLE_PORTABLE_HEADERS "/usr/include" CACHE PATH "Where the headers of the portable libraries are installed")

set(brindle_portable_include "${CMAKE_BINARY_DIR}/portable/include")
set(brindle_portable_pkgconfig "${CMAKE_BINARY_DIR}/portable/pkgconfig")
file(MAKE_DIRECTORY "${brindle_portable_include}" "${brindle_portable_pkgconfig}")
set(ENV{PKG_CONFIG_LIBDIR} "${brindle_portable_pkgconfig}")
set(ENV{PKG_CONFIG_PATH} "")

# brindle_portable_headers(NAME…): folders or files below BRINDLE_PORTABLE_HEADERS.
function(brindle_portable_headers)
  foreach(name IN LISTS ARGN)
    if(NOT EXISTS "${BRINDLE_PORTABLE_HEADERS}/${name}")
      message(FATAL_ERROR "${BRINDLE_PORTABLE_HEADERS}/${name} is missing; scripts/bootstrap installs it")
    endif()
    file(CREATE_LINK "${BRINDLE_PORTABLE_HEADERS}/${name}" "${brindle_portable_include}/${name}" SYMBOLIC)
  endforeach()
endfunction()

# brindle_portable_target(TARGET): an imported library that is nothing but the folder of headers.
function(brindle_portable_target target)
  if(NOT TARGET ${target})
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${brindle_portable_include}")
  endif()
endfunction()

# brindle_portable_module(NAME VERSION): the same as a pkg-config module.
function(brindle_portable_module name version)
  file(WRITE "${brindle_portable_pkgconfig}/${name}.pc"
    "Name: ${name}\nDescription: headers alone\nVersion: ${version}\nCflags: -I${brindle_portable_include}\nLibs:\n")
endfunction()

brindle_portable_headers(utf8proc.h)
brindle_portable_module(libutf8proc 2.8.0)
# The system's own library on macOS; its headers are the SDK's.
brindle_portable_module(ncurses 6.0)
brindle_portable_module(ncursesw 6.0)

# Package, its targets, its headers; a target's name is followed by nothing that has to be linked.
set(brindle_portable_nlohmann_json "nlohmann_json::nlohmann_json|nlohmann")
set(brindle_portable_fmt "fmt::fmt,fmt::fmt-header-only|fmt")
set(brindle_portable_FastFloat "FastFloat::fast_float|fast_float")
set(brindle_portable_tl-expected "tl::expected|tl")
set(brindle_portable_CLI11 "CLI11::CLI11|CLI")
set(brindle_portable_date "date::date,date::date-tz|date")
set(brindle_portable_tomlplusplus "tomlplusplus::tomlplusplus|toml++")
set(brindle_portable_GTest "GTest::gtest,GTest::gtest_main,GTest::gmock,GTest::gmock_main|gtest,gmock")
set(brindle_portable_rapidcheck "rapidcheck,rapidcheck_gtest|rapidcheck,rapidcheck.h")
set(brindle_portable_benchmark "benchmark::benchmark,benchmark::benchmark_main|benchmark")

macro(brindle_provide_package method package)
  if("${package}" STREQUAL "Curses")
    set(Curses_FOUND TRUE)
    set(CURSES_FOUND TRUE)
    set(CURSES_INCLUDE_DIRS "")
    set(CURSES_LIBRARIES "")
  elseif(DEFINED brindle_portable_${package})
    string(REPLACE "|" ";" brindle_portable_row "${brindle_portable_${package}}")
    list(GET brindle_portable_row 0 brindle_portable_targets)
    list(GET brindle_portable_row 1 brindle_portable_names)
    string(REPLACE "," ";" brindle_portable_targets "${brindle_portable_targets}")
    string(REPLACE "," ";" brindle_portable_names "${brindle_portable_names}")
    brindle_portable_headers(${brindle_portable_names})
    foreach(brindle_portable_name IN LISTS brindle_portable_targets)
      brindle_portable_target(${brindle_portable_name})
    endforeach()
    if("${package}" STREQUAL "fmt")
      set_property(TARGET fmt::fmt PROPERTY INTERFACE_COMPILE_DEFINITIONS FMT_HEADER_ONLY=1)
      set_property(TARGET fmt::fmt-header-only PROPERTY INTERFACE_COMPILE_DEFINITIONS FMT_HEADER_ONLY=1)
    endif()
    set(${package}_FOUND TRUE)
  endif()  # Any other package: CMake looks for it itself, and finds only what the SDK has.
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER brindle_provide_package SUPPORTED_METHODS FIND_PACKAGE)
