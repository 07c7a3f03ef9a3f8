#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// What a fuzz target defines, for mutation_driver.cc and for libFuzzer alike.

// Feeds one input to the code under test.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Well-formed inputs to start from.
std::vector<std::string> Seeds();

// How many mutated inputs the driver tries.
extern const int kIterations;

// How many bytes the packaged libraries of a target lose for good in one run at most. 0 where a
// target does not define it.
size_t LostByLibraries();

// Ends the program, as a sanitizer would, when something that always holds does not.
#define REQUIRE(condition)                                            \
  do {                                                                \
    if (!(condition)) {                                               \
      fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
      abort();                                                        \
    }                                                                 \
  } while (false)
