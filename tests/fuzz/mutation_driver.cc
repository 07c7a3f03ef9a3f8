// Runs a fuzz target over its seeds, over mutations of them, and over random bytes. The same inputs
// on every machine.

#include <algorithm>
#include <random>

#include "fuzz/fuzz_target.h"
#include "support/temporary_directory.h"

namespace {

class Mutator {
 public:
  explicit Mutator(std::vector<std::string> seeds) : m_seeds(std::move(seeds)) {}

  // A seed with some mutations, sometimes random bytes.
  std::string Next() {
    if (Below(8) == 0) return RandomBytes(Below(300));
    std::string input = m_seeds[Below(m_seeds.size())];
    for (size_t i = Below(6) + 1; i > 0; --i) Mutate(&input);
    return input;
  }

 private:
  // The generator's own numbers: what a distribution makes of them differs between libraries.
  size_t Below(size_t end) { return m_generator() % std::max<size_t>(end, 1); }

  std::string RandomBytes(size_t count) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(Below(256));
    return bytes;
  }

  // Overwrites four bytes with a number at which lengths and counts go wrong.
  void PlantNumber(std::string* input) {
    static constexpr uint32_t kNumbers[] = {0,          1,          2,          0xff,
                                            0xffff,     0x7fffffff, 0x80000000, 0xfffffffe,
                                            0xffffffff, 0xfffffff0, 0x10000,    44};
    const uint32_t number = kNumbers[Below(std::size(kNumbers))];
    const size_t at = Below(input->size() / 2) * 2;
    for (size_t i = 0; i < 4 && at + i < input->size(); ++i) {
      (*input)[at + i] = static_cast<char>(number >> 8 * i & 0xff);
    }
  }

  void Mutate(std::string* input) {
    const size_t at = Below(input->size() + 1);
    switch (Below(6)) {
      case 0:
        if (at < input->size()) (*input)[at] = static_cast<char>(Below(256));
        break;
      case 1:
        PlantNumber(input);
        break;
      case 2:
        input->resize(at);
        break;
      case 3:
        input->insert(at, RandomBytes(Below(9)));
        break;
      case 4:
        input->erase(at, Below(9));
        break;
      default: {
        const std::string& other = m_seeds[Below(m_seeds.size())];
        *input = input->substr(0, at) + other.substr(Below(other.size()));
      }
    }
  }

  std::vector<std::string> m_seeds;
  std::mt19937 m_generator{20240501};
};

void Run(const std::string& input) {
  // A copy of exactly this size, so that a sanitizer sees a read beyond it.
  const std::vector<uint8_t> bytes(input.begin(), input.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main() {
  const TemporaryDirectory directory;
  for (const std::string& seed : Seeds()) Run(seed);
  Mutator mutator(Seeds());
  for (int i = 0; i < kIterations; ++i) Run(mutator.Next());
}
