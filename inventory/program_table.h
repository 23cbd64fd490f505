// The programs other than agents that the rules know by name, one list a class. Data; the rules are in
// program_recognition.h.
#pragma once

#include <span>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class ProgramClass {
  ide,
  terminal,
  database,
  container,
  daemon,
  systemManager,
};

/// The texts of the first four are the labels of the protections that cover them.
template <>
inline constexpr auto kEnumTexts<ProgramClass> = std::to_array<EnumText<ProgramClass>>({
    {ProgramClass::ide, "IDEs"},
    {ProgramClass::terminal, "Terminals"},
    {ProgramClass::database, "Databases"},
    {ProgramClass::container, "Containers"},
    {ProgramClass::daemon, "Daemons"},
    {ProgramClass::systemManager, "System managers"},
});

/// The base names of the class.
[[nodiscard]] std::span<const std::string_view> programsOf(ProgramClass programClass);

/// Components of an executable's path that put everything below them into the class: "Xcode.app".
[[nodiscard]] std::span<const std::string_view> foldersOf(ProgramClass programClass);

/// Scripts and main classes that make their interpreter a daemon; a path matches by its last components.
[[nodiscard]] std::span<const std::string_view> daemonScripts();

/// A program that is a daemon only with one argument.
struct DaemonCommand {
  std::string_view program;
  std::string_view argument;
};
[[nodiscard]] std::span<const DaemonCommand> daemonCommands();

}  // namespace brindle
