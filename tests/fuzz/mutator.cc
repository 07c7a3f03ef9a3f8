#include "fuzz/mutator.h"

#include <algorithm>
#include <cstdint>
#include <utility>

Mutator::Mutator(std::vector<std::string> seeds, std::vector<std::string> words)
    : m_seeds(std::move(seeds)), m_words(std::move(words)) {}

std::string Mutator::Next() {
  if (Below(8) == 0) return RandomBytes(Below(300));
  std::string input = m_seeds[Below(m_seeds.size())];
  for (size_t i = Below(6) + 1; i > 0; --i) Mutate(&input);
  return input;
}

// The generator's own numbers: what a distribution makes of them differs between libraries.
size_t Mutator::Below(size_t end) { return m_generator() % std::max<size_t>(end, 1); }

std::string Mutator::RandomBytes(size_t count) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(Below(256));
  return bytes;
}

// Overwrites four bytes with a number at which lengths and counts go wrong.
void Mutator::PlantNumber(std::string* input) {
  static constexpr uint32_t kNumbers[] = {0,          1,          2,          0xff,
                                          0xffff,     0x7fffffff, 0x80000000, 0xfffffffe,
                                          0xffffffff, 0xfffffff0, 0x10000,    44};
  const uint32_t number = kNumbers[Below(std::size(kNumbers))];
  const size_t at = Below(input->size() / 2) * 2;
  for (size_t i = 0; i < 4 && at + i < input->size(); ++i) {
    (*input)[at + i] = static_cast<char>(number >> 8 * i & 0xff);
  }
}

// Puts a word of the dictionary between two bytes, or in place of as many as it has.
void Mutator::PlantWord(std::string* input) {
  const std::string& word = m_words[Below(m_words.size())];
  const size_t at = Below(input->size() + 1);
  input->replace(at, Below(2) == 0 ? 0 : word.size(), word);
}

void Mutator::Mutate(std::string* input) {
  const size_t at = Below(input->size() + 1);
  switch (Below(m_words.empty() ? 6 : 8)) {
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
    case 5: {
      const std::string& other = m_seeds[Below(m_seeds.size())];
      *input = input->substr(0, at) + other.substr(Below(other.size()));
      break;
    }
    default:
      PlantWord(input);
  }
}
