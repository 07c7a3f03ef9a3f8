#include "wave/wave_file.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <string>

#include "support/wav_bytes.h"

// The linker's names for a wrapped function and for what it wraps (--wrap).
extern "C" {
size_t RealFread(void* items, size_t size, size_t count, FILE* file) __asm__("__real_fread");
size_t WrapFread(void* items, size_t size, size_t count, FILE* file) __asm__("__wrap_fread");
}

namespace {

using testing::StrEq;

// What a longer file would have put where a read ends short. Who looks at more than was read takes
// the file for that longer one.
std::string g_longerFile;

}  // namespace

size_t WrapFread(void* items, size_t size, size_t count, FILE* file) {
  const auto at = static_cast<size_t>(ftello(file));
  const size_t done = RealFread(items, size, count, file);
  for (size_t i = done * size; i < count * size && at + i < g_longerFile.size(); ++i) {
    static_cast<char*>(items)[i] = g_longerFile[at + i];
  }
  return done;
}

namespace {

// What is found in the first `count` bytes of a file.
wave::Parsed FindInFirst(size_t count, const std::string& bytes) {
  FILE* const file = tmpfile();
  fwrite(bytes.data(), 1, count, file);
  g_longerFile = bytes;
  wave::Parsed found = wave::Find(file, count);
  g_longerFile.clear();
  fclose(file);
  return found;
}

TEST(WaveFile, LooksOnlyAtBytesThatWereRead) {
  const std::string bytes = WavBytes({}, {1, 2, 3});
  const auto fault = [&](size_t count) { return FindInFirst(count, bytes).fault; };
  for (size_t count = 0; count < 4; ++count) EXPECT_THAT(fault(count), StrEq("not RIFF")) << count;
  for (size_t count = 4; count < 12; ++count) EXPECT_THAT(fault(count), StrEq("not WAVE")) << count;
  for (size_t count = 12; count < 44; ++count) {
    EXPECT_THAT(fault(count), StrEq("no samples")) << count;
  }
  EXPECT_THAT(fault(44), StrEq(""));
  EXPECT_EQ(FindInFirst(bytes.size(), bytes).audio->bytes, 6U);
}

TEST(WaveFile, TakesAFileThatHasShrunkForOneWithoutSamples) {
  const std::string bytes = WavBytes({}, {1, 2, 3});
  FILE* const file = tmpfile();
  fwrite(bytes.data(), 1, bytes.size(), file);
  const wave::Parsed found = wave::Find(file, bytes.size());
  EXPECT_EQ(wave::LengthFault(file, *found.audio, 40),
            "its header announces 6 bytes of samples, there are 0");
  fclose(file);
}

}  // namespace
