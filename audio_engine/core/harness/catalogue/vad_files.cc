#include "harness/catalogue/vad_files.h"

#include <cstdio>
#include <string>

namespace harness {

namespace {

constexpr int kMostSegments = 15;  // With more of them the batch ends.

// Reads a number and the comma after it, as the batch does: each may be missing.
bool ReadNumber(const char*& text, int& number) {
  int length = 0;
  if (sscanf(text, "%d%n", &number, &length) != 1) return false;
  text += length;
  if (*text != ',') return false;
  ++text;
  return true;
}

}  // namespace

std::vector<FileUse> VadRecordings(std::string_view description) {
  const std::string whole(description);
  const char* text = whole.c_str();
  std::vector<FileUse> recordings;
  int count = 0;
  int length = 0;
  if (sscanf(text, "%d%n", &count, &length) == 1) text += length;
  for (int i = 0; i < count; ++i) {
    char name[256];
    if (sscanf(text, "%255s%n", name, &length) != 1) break;
    text += length;
    int segments = 0;
    ReadNumber(text, segments);
    if (segments > kMostSegments) break;
    recordings.push_back(
        {.name = "F:/Stream/vad/input/" + std::string(name), .container = Container::kWave});
    for (int pair = 0; pair < segments; ++pair) {
      int start = 0;
      int samples = 0;
      if (ReadNumber(text, start)) ReadNumber(text, samples);
    }
  }
  return recordings;
}

}  // namespace harness
