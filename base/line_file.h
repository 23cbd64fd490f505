// A file of lines that several processes add to, as a value: open while the object lives.
//
// Used by the stores that keep one record a line. Its writers hold the store's lock. What a writer leaves that is
// killed inside its write (the kernel may cut a write between two pages) is a piece of a line: the next append begins a
// new line after it, so that only the killed writer's own line is lost. Readers pass over such a piece and over empty
// lines.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/descriptor.h"
#include "base/result.h"

namespace brindle {

class LineFile {
 public:
  /// Whether what the file holds is kept or goes at once.
  enum class Start { atEnd, afresh };

  /// Opens the file, creating it with mode 0600 where needed; an older file keeps its mode. ELOOP for a symbolic link,
  /// which is never followed; EISDIR or EINVAL for what is no file; kFileWriteNoPermission where access is refused.
  [[nodiscard]] static Result<LineFile> open(const std::string& path, Start start = Start::atEnd);

  /// Adds whole lines, the last line feed included, in one write at the end of the file. When they do not fit the file
  /// is cut back to where it was.
  Outcome append(std::string_view lines);

 private:
  LineFile(Descriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

  Descriptor file_;
  std::string path_;
};

/// Opens the file and appends `lines`; fails as these two do.
Outcome appendLines(const std::string& path, std::string_view lines);

}  // namespace brindle
