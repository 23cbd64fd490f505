// Where the command keeps its files.
//
// Used by everything that opens one of the shared files or the settings; the helper has no files. Nothing is created
// here. BRINDLE_DATA_DIR, when set and not empty, is the one folder for everything; a relative one is taken from the
// working directory.
#pragma once

#include <optional>
#include <string>

#include "platform/environment.h"

namespace brindle {

/// The folder of the event inbox, quit inbox, request log, heartbeat, widget file, plan samples and ownership
/// records. None when there is neither a variable nor a home folder to derive it from.
[[nodiscard]] std::optional<std::string> stateFolder(const Environment& environment);

/// The path of settings.json; none as above.
[[nodiscard]] std::optional<std::string> settingsFile(const Environment& environment);

/// The user's home folder: HOME when it is an absolute path, else what the user database says; none without either.
[[nodiscard]] std::optional<std::string> homeFolder(const Environment& environment);

/// The folder that BRINDLE_DATA_DIR names, as an absolute path; none when it names none.
[[nodiscard]] std::optional<std::string> dataFolderOverride(const Environment& environment);

}  // namespace brindle
