#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

// Makes inputs out of seeds and the words of a dictionary, the same ones on every machine.
class Mutator {
 public:
  // At least one seed; there may be no words.
  Mutator(std::vector<std::string> seeds, std::vector<std::string> words);

  // A seed with some mutations, sometimes random bytes.
  std::string Next();

 private:
  size_t Below(size_t end);
  std::string RandomBytes(size_t count);
  void PlantNumber(std::string* input);
  void PlantWord(std::string* input);
  void Mutate(std::string* input);

  std::vector<std::string> m_seeds;
  std::vector<std::string> m_words;
  std::mt19937 m_generator{20240501};
};
