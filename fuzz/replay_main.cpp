// Feeds every file of a corpus to a fuzzer's entry, so that what was once found is tried in every ordinary build.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int index = 1; index < argc; ++index) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(argv[index], missing)) {
      std::ifstream stream(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
      // Every prefix, too: what arrives over a pipe or from a full disk is cut anywhere.
      for (std::size_t length = bytes.size() > 4096 ? bytes.size() : 0; length <= bytes.size(); ++length) {
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), length);
      }
      ++replayed;
    }
  }
  std::printf("%zu inputs replayed\n", replayed);
  // An empty corpus would make this test pass without trying anything.
  return replayed == 0 ? 1 : 0;
}
