# The identifiers from which every name of the service is built. They end up in D-Bus names, object paths,
# file names and code-signing requirement texts, so anything that could break one of those is refused here.
set(BRINDLE_APP_ID "app.brindle.Brindle" CACHE STRING "Bundle identifier of the application")
set(BRINDLE_TEAM_ID "BRINDLE000" CACHE STRING "Code-signing team identifier")
set(BRINDLE_APP_GROUP_ID "group.app.brindle.Brindle" CACHE STRING "Identifier of the shared container")

# D-Bus: elements of letters, digits and underscores that begin with no digit, joined by dots, 255 characters
# at most; the longest name made of it adds ".helper.disable-sleep".
function(brindle_check_dotted variable longest)
  set(value "${${variable}}")
  if(NOT value MATCHES "^[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)+$")
    message(FATAL_ERROR
      "${variable}: expected two or more elements of letters, digits and underscores joined by dots, got \"${value}\"")
  endif()
  string(LENGTH "${value}" length)
  if(length GREATER longest)
    message(FATAL_ERROR "${variable}: expected at most ${longest} characters, got ${length}")
  endif()
endfunction()

brindle_check_dotted(BRINDLE_APP_ID 200)
brindle_check_dotted(BRINDLE_APP_GROUP_ID 200)
if(NOT BRINDLE_TEAM_ID MATCHES "^[A-Z0-9]+$")
  message(FATAL_ERROR "BRINDLE_TEAM_ID: expected upper-case letters and digits, got \"${BRINDLE_TEAM_ID}\"")
endif()
string(LENGTH "${BRINDLE_TEAM_ID}" team_length)
if(NOT team_length EQUAL 10)
  message(FATAL_ERROR "BRINDLE_TEAM_ID: expected 10 characters, got ${team_length}")
endif()

set(BRINDLE_GENERATED_DIR "${CMAKE_BINARY_DIR}/generated")
configure_file(cmake/identity_config.h.in "${BRINDLE_GENERATED_DIR}/generated/identity_config.h" @ONLY)
