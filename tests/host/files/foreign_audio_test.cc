#include "files/foreign_audio.h"

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

namespace host {
namespace {

using std::string_literals::operator""s;

std::string_view Kind(const std::string& bytes) {
  return ForeignAudio({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

// Two frames with this header, `frameBytes` long each.
std::string Frames(const std::string& header, size_t frameBytes) {
  const std::string frame = header + std::string(frameBytes - header.size(), 'x');
  return frame + frame;
}

TEST(ForeignAudio, KnowsFilesByTheirFirstBytes) {
  EXPECT_EQ(Kind("RIFF\x24\0\0\0WAVEfmt "s), "a WAVE file");
  EXPECT_EQ(Kind("RIFF\x24\0\0\0AVI LIST"s), "a RIFF file");
  EXPECT_EQ(Kind("fLaC\0\0\0\x22"s), "a FLAC file");
  EXPECT_EQ(Kind("OggS\0\2"s), "an Ogg file");
  EXPECT_EQ(Kind("\0\0\0\x20"s + "ftypM4A "), "an MP4 file");
  EXPECT_EQ(Kind("ID3\4\0\0\0\0\x21\x76"s), "an MP3 file");
}

TEST(ForeignAudio, KnowsStreamsByTwoFrames) {
  EXPECT_EQ(Kind(Frames("\xFF\xFB\x90\x64", 417)), "an MP3 file") << "128 kbit/s at 44.1 kHz";
  EXPECT_EQ(Kind(Frames("\xFF\xF3\x48\xC4"s, 144)), "an MP3 file") << "32 kbit/s at 16 kHz";
  EXPECT_EQ(Kind(Frames("\xFF\xFD\x84\x04", 384)), "an MP3 file") << "layer II, 128 kbit/s, 48 kHz";
  const std::string adts = "\xFF\xF1\x50\x80\x2E\x7F\xFC"s;  // 371 bytes, 44.1 kHz stereo.
  EXPECT_EQ(Kind(Frames(adts, 371)), "an AAC file");
}

TEST(ForeignAudio, LeavesSamplesAlone) {
  EXPECT_EQ(Kind(""), "");
  EXPECT_EQ(Kind("RIF"), "");
  EXPECT_EQ(Kind("\xFF"), "");
  EXPECT_EQ(Kind(std::string(9000, '\0')), "");
  EXPECT_EQ(Kind(std::string(9000, '\xFF')), "");
  EXPECT_EQ(Kind("ID3\xFF\xFF"s + std::string(100, '\xFF')), "") << "no tag has such a version";
  const std::string once = Frames("\xFF\xFB\x90\x64", 417).substr(0, 417) + std::string(500, 'x');
  EXPECT_EQ(Kind(once), "") << "one header may stand there by chance";
  EXPECT_EQ(Kind(Frames("\xFF\xFB\x90\x64", 416)), "") << "at the wrong distance";
  const std::string other = Frames("\xFF\xFB\x90\x64", 417).substr(0, 417) + "\xFF\xFB\x94\x64";
  EXPECT_EQ(Kind(other), "") << "of another sampling rate";
}

TEST(ForeignAudio, LeavesNoiseThatBeginsLikeAHeaderAlone) {
  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    std::string samples = "\xFF\xFB";
    if (i % 2 != 0) samples = "\xFF\xF1";
    while (samples.size() < 9000) samples += static_cast<char>(random());
    EXPECT_EQ(Kind(samples), "");
  }
}

}  // namespace
}  // namespace host
