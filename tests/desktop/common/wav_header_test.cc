#include "desktop/common/wav_header.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "engine_api/common/wav_file_writer.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

// The header of a finished file that holds `dataBytes` bytes, a hole that takes no room on the
// disk.
WavHeader FinishedHeader(off_t dataBytes) {
  const TemporaryDirectory directory;
  FILE* file = desktop::CreateWav("out.wav", {16000, 1, 16}, desktop::WavBuffer::kNone);
  EXPECT_EQ(ftruncate(fileno(file), 44 + dataBytes), 0);
  desktop::FinishWav(file, {16000, 1, 16});
  WavHeader finished = {};
  file = fopen("out.wav", "rb");
  EXPECT_EQ(fread(&finished, sizeof(finished), 1, file), 1U);
  fclose(file);
  return finished;
}

TEST(FinishWav, AnnouncesTheLengthOfTheFile) {
  EXPECT_EQ(FinishedHeader(1000).dataBytes, 1000U);
  EXPECT_EQ(FinishedHeader(1000).riffBytes, 1036U);
  EXPECT_EQ(FinishedHeader(off_t{3} << 30).dataBytes, 3U << 30);
}

TEST(FinishWav, LimitsLengthsOfFourGiB) {
  EXPECT_EQ(FinishedHeader(0xFFFFFFF0).dataBytes, 0xFFFFFFF0U);
  EXPECT_EQ(FinishedHeader(0xFFFFFFF0).riffBytes, UINT32_MAX);
  EXPECT_EQ(FinishedHeader(off_t{1} << 32).dataBytes, UINT32_MAX);
  EXPECT_EQ(FinishedHeader(off_t{5} << 30).dataBytes, UINT32_MAX);
  EXPECT_EQ(FinishedHeader(off_t{5} << 30).riffBytes, UINT32_MAX);
}

TEST(FinishWav, ReturnsTheLengthOfTheData) {
  const TemporaryDirectory directory;
  FILE* const file = desktop::CreateWav("out.wav", {16000, 1, 8}, desktop::WavBuffer::kStdio);
  EXPECT_EQ(fwrite("abc", 1, 3, file), 3U);
  EXPECT_EQ(desktop::FinishWav(file, {16000, 1, 8}), 3U) << "without the pad byte";
  EXPECT_EQ(desktop::FinishWav(nullptr, {16000, 1, 8}), 0U);
}

TEST(CreateWav, WritesACanonicalHeaderAtOnce) {
  const TemporaryDirectory directory;
  FILE* const file = desktop::CreateWav("out.wav", {44100, 2, 16}, desktop::WavBuffer::kStdio);
  EXPECT_EQ(ReadFile("out.wav"), WavBytes({.channels = 2, .rate = 44100}, {}));
  fclose(file);
}

}  // namespace
