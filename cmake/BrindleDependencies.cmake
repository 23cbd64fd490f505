# Libraries from outside, each with what it is for; scripts/bootstrap installs them.
find_package(nlohmann_json 3.11 REQUIRED)  # JSON tokens
find_package(FastFloat REQUIRED)           # text to floating point, independent of the locale
find_package(tl-expected REQUIRED)         # expected results
find_package(CLI11 REQUIRED)               # options of the command
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)  # user-perceived characters, lower case

if(BRINDLE_LIBCXX)
  include(BrindleLibcxx)
else()
  find_package(fmt 9 REQUIRED)         # text formatting
  find_package(date REQUIRED)          # named time zones from the system's zone files
  find_package(tomlplusplus REQUIRED)  # validation of TOML settings
endif()

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  pkg_check_modules(libsystemd REQUIRED IMPORTED_TARGET libsystemd>=247)  # D-Bus, event loop, journal
  pkg_check_modules(icu REQUIRED IMPORTED_TARGET icu-i18n icu-uc)         # localised times
endif()

if(BRINDLE_TESTS AND NOT BRINDLE_LIBCXX)
  find_package(GTest REQUIRED)
  find_package(rapidcheck REQUIRED)
endif()
if(BRINDLE_BENCH)
  find_package(benchmark REQUIRED)
endif()
