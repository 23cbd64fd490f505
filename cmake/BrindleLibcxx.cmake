# The C++ libraries from outside, compiled against libc++: Debian's own are compiled against libstdc++, and two
# standard libraries cannot share a std::string. Sources of RapidCheck and date have no Debian package that holds
# them, so their folders are given by the caller (scripts/test-libcxx).
set(BRINDLE_RAPIDCHECK_SOURCE "" CACHE PATH "Source folder of RapidCheck, for libc++ builds")
set(BRINDLE_DATE_SOURCE "" CACHE PATH "Source folder of Howard Hinnant's date, for libc++ builds")
foreach(variable IN ITEMS BRINDLE_RAPIDCHECK_SOURCE BRINDLE_DATE_SOURCE)
  if(NOT IS_DIRECTORY "${${variable}}")
    message(FATAL_ERROR "${variable}: expected a source folder, got \"${${variable}}\"")
  endif()
endforeach()

find_package(Threads REQUIRED)

add_library(fmt_header_only INTERFACE)
target_compile_definitions(fmt_header_only INTERFACE FMT_HEADER_ONLY=1)
add_library(fmt::fmt-header-only ALIAS fmt_header_only)

add_library(tomlplusplus_header_only INTERFACE)
target_compile_definitions(tomlplusplus_header_only INTERFACE TOML_HEADER_ONLY=1)
add_library(tomlplusplus::tomlplusplus ALIAS tomlplusplus_header_only)

add_library(date_tz STATIC "${BRINDLE_DATE_SOURCE}/src/tz.cpp")
target_include_directories(date_tz SYSTEM PUBLIC "${BRINDLE_DATE_SOURCE}/include")
target_compile_definitions(date_tz PUBLIC USE_OS_TZDB=1 ONLY_C_LOCALE=1 HAS_STRING_VIEW=1)
target_link_libraries(date_tz PUBLIC Threads::Threads)
add_library(date::date ALIAS date_tz)
add_library(date::date-tz ALIAS date_tz)

if(BRINDLE_TESTS)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
  foreach(library IN ITEMS gtest gtest_main gmock gmock_main)
    if(NOT TARGET GTest::${library})
      add_library(GTest::${library} ALIAS ${library})
    endif()
  endforeach()
  add_subdirectory("${BRINDLE_RAPIDCHECK_SOURCE}" "${CMAKE_BINARY_DIR}/rapidcheck" EXCLUDE_FROM_ALL)
  target_include_directories(rapidcheck INTERFACE "${BRINDLE_RAPIDCHECK_SOURCE}/extras/gtest/include")
  # Its headers are not held to this tree's warnings.
  get_target_property(rapidcheck_headers rapidcheck INTERFACE_INCLUDE_DIRECTORIES)
  set_target_properties(rapidcheck PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${rapidcheck_headers}")
endif()
