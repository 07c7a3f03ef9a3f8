#include "recording.h"

#include <cstdio>
#include <vector>

bool WriteRecording(const char* name, int seconds) {
  FILE* const file = fopen(name, "wb");
  if (file == nullptr) return false;
  Noise noise(1);
  std::vector<short> second(2 * kRecordingRate);
  bool written = true;
  for (int i = 0; i < seconds; ++i) {
    FillRecording(noise, second.data(), second.size());
    written &= fwrite(second.data(), sizeof(short), second.size(), file) == second.size();
  }
  return fclose(file) == 0 && written;
}
