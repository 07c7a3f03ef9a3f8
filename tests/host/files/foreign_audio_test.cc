#include "files/foreign_audio.h"

#include <gmock/gmock.h>

#include <cstdio>
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

// kbit/s by ISO/IEC 11172-3 and 13818-3: MPEG-1 layers I, II and III, the others' layers I, and II
// and III.
constexpr size_t kRates[5][14] = {
    {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
    {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}};

std::string MpegHeader(unsigned version, unsigned layer, unsigned rate, unsigned frequency,
                       unsigned padding) {
  return {'\xFF', static_cast<char>(0xE1 | version << 3 | (4 - layer) << 1),
          static_cast<char>(rate << 4 | frequency << 2 | padding << 1), '\x64'};
}

TEST(ForeignAudio, KnowsTheFramesOfEveryMpegFormat) {
  for (int format = 0; format < 3 * 3 * 14 * 3 * 2; ++format) {
    const unsigned version = std::vector<unsigned>{3, 2, 0}[static_cast<size_t>(format % 3)];
    const auto layer = static_cast<unsigned>(1 + format / 3 % 3);
    const auto rateIndex = static_cast<unsigned>(1 + format / 9 % 14);
    const auto frequencyIndex = static_cast<unsigned>(format / 126 % 3);
    const auto padding = static_cast<unsigned>(format / 378);
    const bool first = version == 3;
    const size_t rate = kRates[first ? layer - 1 : layer == 1 ? 3 : 4][rateIndex - 1] * 1000;
    const size_t frequency =
        std::vector<size_t>{44100, 48000, 32000}[frequencyIndex] / (first          ? 1
                                                                    : version == 2 ? 2
                                                                                   : 4);
    const size_t samples = layer == 1 ? 384 : layer == 2 || first ? 1152 : 576;
    const size_t bytes = layer == 1 ? 4 * (samples / 32 * rate / frequency + padding)
                                    : samples / 8 * rate / frequency + padding;
    const std::string header = MpegHeader(version, layer, rateIndex, frequencyIndex, padding);
    EXPECT_EQ(Kind(Frames(header, bytes)), "an MP3 file") << format;
    EXPECT_EQ(Kind(Frames(header, bytes + 1)), "") << format;
  }
}

TEST(ForeignAudio, KnowsWhatMayChangeFromFrameToFrame) {
  std::string frames = Frames("\xFF\xFB\x90\x64", 417);
  frames[417 + 2] |= 1;  // The private bit.
  frames[417 + 3] = '\x44';
  EXPECT_EQ(Kind(frames), "an MP3 file");
  std::string adts = Frames("\xFF\xF1\x50\x82\x0E\x7F\xFC"s, 4096 + 115);
  EXPECT_EQ(Kind(adts), "an AAC file") << "4211 bytes";
  for (const auto& [rate, kind] : {std::pair('\x70', "an AAC file"), std::pair('\x74', "")}) {
    std::string other = adts;
    other[2] = other[4211 + 2] = rate;
    EXPECT_EQ(Kind(other), kind) << "13 and more are no rates";
  }
  adts[4211 + 1] = '\xF0';
  EXPECT_EQ(Kind(adts), "") << "one with a checksum and one without";
}

TEST(ForeignAudio, LooksAtTheHeadOfAFileThatIsLonger) {
  FILE* const file = tmpfile();
  const std::string bytes = Frames("\xFF\xFB\x90\x64", 417) + std::string(50000, 'x');
  fwrite(bytes.data(), 1, bytes.size(), file);
  EXPECT_EQ(ForeignAudio(file), "an MP3 file");
  EXPECT_EQ(ftell(file), 0);
  fclose(file);
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
