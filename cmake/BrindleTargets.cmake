# brindle_library(NAME SOURCES … [USES …] [LINKS …])
#   A library of the tree. Paths in SOURCES are relative to the folder; headers are found from the root.
#   USES names other libraries of the tree, LINKS libraries from outside, which stay out of the users' sight.
function(brindle_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES;LINKS")
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}" "${BRINDLE_GENERATED_DIR}")
  target_link_libraries(${name} PUBLIC brindle_flags ${arg_USES} PRIVATE brindle_warnings ${arg_LINKS})
endfunction()

# brindle_executable(NAME SOURCES … [USES …] [LINKS …])
function(brindle_executable name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES;LINKS")
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}" "${BRINDLE_GENERATED_DIR}")
  target_link_libraries(${name} PRIVATE brindle_flags brindle_warnings ${arg_USES} ${arg_LINKS})
endfunction()

# brindle_test(NAME SOURCES … [USES …] [LINKS …] [LABELS …] [PROPERTY])
#   One GoogleTest program, entered into CTest as one test that runs its cases shuffled. It finds data files
#   under BRINDLE_TEST_DATA_DIR. PROPERTY links RapidCheck.
function(brindle_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "PROPERTY" "TIMEOUT" "SOURCES;USES;LINKS;LABELS")
  brindle_executable(${name} SOURCES ${arg_SOURCES} USES ${arg_USES} LINKS ${arg_LINKS} GTest::gmock_main)
  if(arg_PROPERTY)
    target_link_libraries(${name} PRIVATE rapidcheck)
  endif()
  # Relative to the root, where CTest runs it: a path of this machine in the flags would keep compiler caches from
  # being shared between checkouts.
  target_compile_definitions(${name} PRIVATE BRINDLE_TEST_DATA_DIR="tests/data")
  # What is tested stays optimised; the tests' own code takes half the time to compile like this.
  target_compile_options(${name} PRIVATE -O0)
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_shuffle --gtest_brief=1 WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}")
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "unit;${arg_LABELS}")
endfunction()

# brindle_harden(TARGET): what a program that runs with rights, or on input from strangers, is linked with.
function(brindle_harden target)
  if(NOT BRINDLE_SANITIZE AND NOT APPLE)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    target_link_options(${target} PRIVATE -pie -Wl,-z,relro,-z,now -Wl,--as-needed -Wl,--gc-sections)
  endif()
endfunction()

# brindle_link_cxx_statically(TARGET): for the daemon, which mostly waits, and has 304 kB of its own instead of 380 kB
# without the shared C++ library; and for the command, which agents start at each of their turns, and whose start takes
# 1.6 ms of processor time instead of 2.7 (perf stat -r 200 brindle --version).
function(brindle_link_cxx_statically target)
  if(NOT BRINDLE_SANITIZE AND NOT BRINDLE_LIBCXX AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()
