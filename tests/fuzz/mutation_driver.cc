// Runs a fuzz target over its seeds, over mutations of them, and over random bytes. The same inputs
// on every machine. What a run opens and allocates is gone after it, so that a search of any length
// is possible.
//
//   NAME [--dictionary FILE]   The bounded search, with the words of a dictionary.
//   NAME --corpus DIR          Writes the seeds into a folder, one file each, for libFuzzer.

#include <malloc.h>

#include <filesystem>
#include <iterator>
#include <string_view>

#include "fuzz/dictionary.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/mutator.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace {

void Run(const std::string& input) {
  // A copy of exactly this size, so that a sanitizer sees a read beyond it.
  const std::vector<uint8_t> bytes(input.begin(), input.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(all), end(all)));
}

// Of the C library; under a sanitizer, which brings its own memory, next to nothing.
size_t AllocatedBytes() {
  const struct mallinfo2 figures = mallinfo2();
  return figures.uordblks + figures.hblkhd;
}

void WriteCorpus(const std::filesystem::path& folder) {
  const std::filesystem::path whole = std::filesystem::absolute(folder);
  std::filesystem::create_directories(whole);
  const TemporaryDirectory directory;
  size_t number = 0;
  for (const std::string& seed : Seeds()) {
    WriteFile(whole / ("seed_" + std::to_string(number++)), seed);
  }
}

void Search(const std::vector<std::string>& words) {
  // Tables that are made at first use, and the allocator's.
  constexpr size_t kMaxKeptBytes = 1 << 20;
  const TemporaryDirectory directory;
  const std::vector<std::string> seeds = Seeds();
  for (const std::string& seed : seeds) Run(seed);
  const size_t descriptors = OpenDescriptors();
  const size_t bytes = AllocatedBytes();
  Mutator mutator(seeds, words);
  for (int i = 0; i < kIterations; ++i) Run(mutator.Next());
  REQUIRE(OpenDescriptors() == descriptors);
  REQUIRE(AllocatedBytes() <=
          bytes + kMaxKeptBytes + static_cast<size_t>(kIterations) * LostByLibraries());
}

}  // namespace

__attribute__((weak)) size_t LostByLibraries() { return 0; }

int main(int argc, char** argv) {
  const std::string_view option = argc > 1 ? argv[1] : "";
  const bool known = option == "--corpus" || option == "--dictionary";
  if (argc != 1 && (argc != 3 || !known)) {
    fprintf(stderr, "Usage: %s [--dictionary FILE | --corpus DIR]\n", argv[0]);
    return 2;
  }
  if (option == "--corpus") {
    WriteCorpus(argv[2]);
  } else {
    Search(argc == 3 ? ReadDictionary(argv[2]) : std::vector<std::string>{});
  }
}
