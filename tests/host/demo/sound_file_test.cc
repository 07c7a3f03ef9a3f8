#include "demo/sound_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "demo/placed_file.h"
#include "files/known_digest.h"
#include "support/temporary_directory.h"
#include "wave/wave_file.h"

namespace host {
namespace {

constexpr harness::WaveFormat kFormat = {8000, 1};

// What this process says of the content of a file, and whether it reads it for that.
struct Known {
  FileDigest digest;
  bool read = false;
};

Known KnownOf(const char* path) {
  Known known;
  const int file = open(path, O_RDONLY);
  known.digest = KnownDigestOf(file, [&known] { return known.read = true; });
  close(file);
  return known;
}

TEST(SoundFile, IsItsSamplesWithAHeaderOrWithout) {
  SoundFile& file = SoundFileOf(Sound::kSpeech, kFormat);
  const std::vector<int16_t> samples = Render(Sound::kSpeech, 8000, 1);
  const auto pcm = std::as_bytes(std::span(samples));
  const auto header = wave::Header(8000, 1, 16, pcm.size());
  const auto head = std::as_bytes(std::span(header));
  const auto bytes = file.Bytes(false);
  EXPECT_TRUE(std::ranges::equal(file.Bytes(true), pcm));
  EXPECT_TRUE(std::ranges::equal(bytes.subspan(head.size()), pcm));
  EXPECT_TRUE(std::ranges::equal(bytes.first(head.size()), head));
}

TEST(SoundFile, IsMadeOnceForEachFormat) {
  SoundFile* const file = &SoundFileOf(Sound::kSpeech, kFormat);
  EXPECT_EQ(&SoundFileOf(Sound::kSpeech, kFormat), file);
  EXPECT_EQ(file->Bytes(false).data(), SoundFileOf(Sound::kSpeech, kFormat).Bytes(false).data());
  EXPECT_NE(&SoundFileOf(Sound::kSpeech, {8000, 2}), file);
  EXPECT_NE(&SoundFileOf(Sound::kSpeech, {16000, 1}), file);
  EXPECT_NE(&SoundFileOf(Sound::kNoisy, kFormat), file);
}

TEST(SoundFile, IsKnownWhereItIsPlacedWithItsDigest) {
  const TemporaryDirectory directory;
  SoundFile& file = SoundFileOf(Sound::kSpeech, kFormat);
  for (const bool headerless : {false, true}) {
    const char* const place = headerless ? "samples" : "wave";
    PlaceFile("work", place, file.Bytes(headerless), &file.Digest(headerless));
    const Known known = KnownOf((std::string("work/") + place).c_str());
    EXPECT_FALSE(known.read) << place;
    const int placed = open((std::string("work/") + place).c_str(), O_RDONLY);
    const FileDigest there = DigestOf(placed, [] { return true; });
    close(placed);
    EXPECT_EQ(known.digest.digest, there.digest) << place;
    EXPECT_EQ(known.digest.bytes, there.bytes) << place;
  }
  PlaceFile("work", "unknown", file.Bytes(true));
  EXPECT_TRUE(KnownOf("work/unknown").read);
}

}  // namespace
}  // namespace host
