// The constants behind the rows of commands.inc, declared once.
//
// Included by each command's own file, so that its constant has external linkage, and by the table.
#pragma once

#include "cli/command.h"

namespace brindle {

#define BRINDLE_COMMAND(constant) extern const Command constant;
#include "cli/commands.inc"
#undef BRINDLE_COMMAND

}  // namespace brindle
