// What do reading and writing JSON cost, against the document type of the library whose tokenizer is used, and what
// does one append to a file? The event inbox is read whole while the user waits, so that a full one (256 KiB) must take
// less than 4 ms; and keeping the order of members and the text of numbers must not cost more than a third of the
// time that the library's own documents take.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/file_lock.h"
#include "base/iso8601.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/line_file.h"
#include "base/text.h"

namespace brindle {
namespace {

constexpr std::size_t kFullInbox = std::size_t{256} << 10;

/// Lines as the event inbox holds them, up to its full size.
const std::vector<std::string>& inboxLines() {
  static const std::vector<std::string> lines = [] {
    std::vector<std::string> made;
    std::size_t bytes = 0;
    for (int index = 0; bytes < kFullInbox; ++index) {
      const std::string number = std::to_string(index);
      made.push_back(R"({"id":"6A1C3E55-7D8B-4F2A-9C0D-0000)" + std::to_string(10000000 + index) +
                     R"(","time":"2026-03-01T08:00:00Z","agent":"claude-code","kind":"finished","sessionID":"s-)" +
                     number + R"(","cwd":"\/home\/someone\/projects\/brindle","message":"All )" + number +
                     R"( tests pass \u2014 d\u00e9j\u00e0 vu","agentPID":)" + number + R"(,"duration":12.75})");
      bytes += made.back().size() + 1;
    }
    return made;
  }();
  return lines;
}

void JsonLinesOurs(benchmark::State& state) {
  for (auto _ : state) {
    for (const std::string& line : inboxLines()) {
      const auto value = parseJson(line);
      if (!value) std::abort();
      benchmark::DoNotOptimize(writeJson(*value));
    }
  }
}
BENCHMARK(JsonLinesOurs)->Unit(benchmark::kMillisecond);

void JsonLinesLibrary(benchmark::State& state) {
  for (auto _ : state) {
    for (const std::string& line : inboxLines()) {
      const auto value = nlohmann::json::parse(line);
      benchmark::DoNotOptimize(value.dump());
    }
  }
}
BENCHMARK(JsonLinesLibrary)->Unit(benchmark::kMillisecond);

void AppendLine(benchmark::State& state) {
  std::string folder = "/tmp/brindle-bench-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) std::abort();
  const std::string path = folder + "/inbox.jsonl";
  const std::string lockPath = folder + "/inbox.lock";
  const std::string line = inboxLines().front() + "\n";
  for (auto _ : state) {
    const auto lock = FileLock::acquire(lockPath);
    if (!lock || !appendLines(path, line)) std::abort();
  }
  (void)removeFile(path);
  (void)removeFile(lockPath);
  ::rmdir(folder.c_str());
}
BENCHMARK(AppendLine)->Unit(benchmark::kMicrosecond);

void DateRoundTrip(benchmark::State& state) {
  double seconds = 1.7e9;
  for (auto _ : state) benchmark::DoNotOptimize(readIso8601(writeIso8601(dateFromSeconds(seconds += 1))));
}
BENCHMARK(DateRoundTrip)->Unit(benchmark::kMicrosecond);

void CutMessage(benchmark::State& state) {
  constexpr std::size_t kMessageLimit = 160;
  std::string text;
  while (text.size() < 4096) text += "All tests pass — déjà vu 👍🏽. ";
  for (auto _ : state) benchmark::DoNotOptimize(firstCharacters(newlinePieces(text).front(), kMessageLimit));
}
BENCHMARK(CutMessage)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace brindle
