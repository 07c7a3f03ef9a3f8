// The list that the row of the voice activity batch reads, against fscanf, by which the batch reads
// it.

#include <cstdio>

#include "catalogue/vad_files.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 50000;

namespace {

const std::string kFolder = "F:/Stream/vad/input/";

// The names as the C library reads them.
std::vector<std::string> NamesByScan(std::string text) {
  text += '\n';  // An empty stream cannot be opened; white space at the end says nothing.
  FILE* const file = fmemopen(text.data(), text.size(), "r");
  std::vector<std::string> names;
  int count = 0;
  if (fscanf(file, "%d", &count) != 1) count = 0;
  for (int i = 0; i < count; ++i) {
    char name[256];
    if (fscanf(file, "%255s", name) != 1) break;
    int segments = 0;
    if (fscanf(file, "%d,", &segments) != 1) segments = 0;
    if (segments > 15) break;
    names.push_back(kFolder + name);
    for (int pair = 0; pair < segments; ++pair) {
      int start = 0;
      int samples = 0;
      if (fscanf(file, "%d,%d,", &start, &samples) == EOF) break;
    }
  }
  fclose(file);
  return names;
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"",
          "2\na.wav 2,1200,5000,9000,4000,\nb.wav\t0,\n",
          "+2 a.wav +1, -7,\n9,b.wav\n0,",
          "3\na.wav 15,\nb.wav 16,\nc.wav 0,\n",
          "99999999999999999999 a.wav 0,",
          "2\na.wav 1,7,b.wav 0,\n",
          "1 " + std::string(300, 'n') + " 0,"};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  std::vector<std::string> names;
  for (const harness::FileUse& use : harness::VadRecordings(text)) {
    REQUIRE(use.container == harness::Container::kWave);
    names.push_back(use.name);
  }
  REQUIRE(names == NamesByScan(text));
  return 0;
}
