#include "files/foreign_audio.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <utility>
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

TEST(ForeignAudio, KnowsFurtherAudioFilesByAllOfTheirSignature) {
  const std::string wideWave = "riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\0\0"s;
  const std::string windows = "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\0\xAA\0\x62\xCE\x6C"s;
  const std::vector<std::pair<std::string, std::string>> kinds = {
      {"FORM\0\0\1\0AIFF"s, "an AIFF file"},
      {"FORM\0\0\1\0AIFC"s, "an AIFF file"},
      {".snd", "an AU file"},
      {"caff\0\1"s, "a CAF file"},
      {wideWave, "a W64 file"},
      {"RF64\xFF\xFF\xFF\xFFWAVE"s, "an RF64 file"},
      {windows, "a WMA file"},
      {"\x1A\x45\xDF\xA3", "a Matroska file"},
      {"TTA1", "a TTA file"},
      {"TTA2", "a TTA file"},
      {"wvpk", "a WavPack file"}};
  for (const auto& [signature, kind] : kinds) {
    EXPECT_EQ(Kind(signature + std::string(100, '\0')), kind);
    // Of those with a size inside, that may be any.
    const bool sized = signature[0] == 'F' || signature[0] == 'R';
    for (size_t at = 0; at < signature.size(); ++at) {
      if (sized && at >= 4 && at < 8) continue;
      std::string other = signature + std::string(100, '\0');
      other[at] ^= 0x40;
      EXPECT_EQ(Kind(other), "") << kind << " " << at;
    }
  }
}

TEST(ForeignAudio, KnowsPrograms) {
  EXPECT_EQ(Kind("\x7F\x45\x4C\x46\2\1\1"), kProgram);
  FILE* const self = fopen("/proc/self/exe", "rb");
  EXPECT_EQ(ForeignAudio(self), kProgram);
  fclose(self);

  std::string windows(300, '\0');
  windows.replace(0, 2, "MZ");
  EXPECT_EQ(Kind(windows), "") << "two letters are one sample";
  windows[0x3C] = '\xF0';
  windows.replace(0xF0, 2, "PE");
  EXPECT_EQ(Kind(windows), kProgram);
  windows[0x3F] = '\x7F';
  EXPECT_EQ(Kind(windows), "") << "beyond the file";

  // Magic number, processor, its kind, type of file, and more.
  const std::string apple = "\xCF\xFA\xED\xFE\x0C\0\0\1\0\0\0\0\2\0\0\0"s + std::string(20, '\0');
  EXPECT_EQ(Kind(apple), kProgram);
  EXPECT_EQ(Kind("\xFE\xED\xFA\xCE\0\0\0\x12\0\0\0\0\0\0\0\2"s + std::string(20, '\0')), kProgram);
  for (const size_t at : {4U, 12U}) {
    std::string quiet = apple;
    quiet[at] = '\x7F';
    EXPECT_EQ(Kind(quiet), "") << "four quiet samples " << at;
  }
  EXPECT_EQ(Kind("\xCA\xFE\xBA\xBE\0\0\0\2"s + std::string(20, '\0')), kProgram);
  EXPECT_EQ(Kind("\xCA\xFE\xBA\xBE\0\0\0\x34"s + std::string(20, '\0')), "");
}

TEST(ForeignAudio, KnowsTexts) {
  const std::string script =
      "#!/bin/sh\n# Takes what the microphone hears, and plays it.\nexec true\n";
  EXPECT_EQ(Kind(script), kText);
  EXPECT_EQ(Kind("sp01.wav\tsp02.wav\r\nsp03.wav\tsp04.wav\r\nsp05.wav\tsp06.wav\r\nsp07.wav\r\n"),
            kText);
  std::string greek;
  while (greek.size() < 100) greek += "\u03B1\u03B2\u03B3 \u20AC \U0001F3B5 abc ";
  EXPECT_EQ(Kind(greek), kText);
  EXPECT_EQ(Kind(greek.substr(0, 64)), kText);
  std::string latin = script + script;
  latin[20] = latin[40] = '\xE9';
  EXPECT_EQ(Kind(latin), kText) << "a few letters of another code";
}

TEST(ForeignAudio, TakesNothingElseForAText) {
  const std::string text =
      "Of five and seventy bytes, as many as are looked at, none is out of range.";
  ASSERT_GT(text.size(), 64U);
  EXPECT_EQ(Kind(text), kText);
  EXPECT_EQ(Kind(text.substr(0, 64)), kText);
  EXPECT_EQ(Kind(text.substr(0, 63)), "") << "too short to tell";
  EXPECT_EQ(Kind(std::string(5000, 's')), "") << "a constant";
  EXPECT_EQ(Kind(text + std::string(20, '\0')), "");
  EXPECT_EQ(Kind(text + text + std::string(7, '\x80')), kText);
  EXPECT_EQ(Kind(text + text + std::string(8, '\x80')), "") << "more than five of a hundred";
  std::string samples;
  while (samples.size() < 90) samples += "a0b1c2d3e4f4";
  EXPECT_EQ(Kind(samples), "") << "five values of every other byte";
  EXPECT_EQ(Kind(samples.substr(1)), "");
  EXPECT_EQ(Kind(samples + "f5"), kText);
  EXPECT_EQ(Kind(text + text + std::string(150, 's')), "") << "a constant after something else";
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

TEST(ForeignAudio, KnowsTheFramesOfEveryAc3Format) {
  constexpr size_t kAc3Rates[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                  192, 224, 256, 320, 384, 448, 512, 576, 640};
  constexpr size_t kFrequencies[] = {48000, 44100, 32000};
  for (size_t format = 0; format < 3 * 38; ++format) {
    const size_t frequency = format / 38;
    const size_t size = format % 38;
    // 1536 samples in words of two bytes; at 44.1 kHz every other frame has one more.
    const size_t words = kAc3Rates[size / 2] * 1000 * 1536 / kFrequencies[frequency] / 16 +
                         (frequency == 1 ? size % 2 : 0);
    const std::string header =
        "\x0B\x77\x12\x34"s + static_cast<char>(frequency << 6U | size) + "\x40";
    EXPECT_EQ(Kind(Frames(header, 2 * words)), "an AC-3 file") << format;
    EXPECT_EQ(Kind(Frames(header, 2 * words + 2)), "") << format;
  }
  const std::string good = Frames("\x0B\x77\x12\x34\x14\x40", 768);  // 192 kbit/s at 48 kHz.
  ASSERT_EQ(Kind(good), "an AC-3 file");
  std::string other = good;
  other[2] = other[3] = 'c';
  EXPECT_EQ(Kind(other), "an AC-3 file") << "each frame has its own checksum";
  for (const size_t first : {0U, 768U}) {
    for (const auto& [at, value] : {std::pair(4, '\xD4'), {4, '\x26'}, {4, '\x16'}, {5, '\x58'}}) {
      other = good;
      other[first + static_cast<size_t>(at)] = value;
      EXPECT_EQ(Kind(other), "") << "no such rate, size or version, or another one " << first << at;
    }
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
  const std::string four = Frames(Frames("\xFF\xFB\x90\x64", 417), 2 * 417);
  const std::string bytes = four + std::string(50000, 'x');
  fwrite(bytes.data(), 1, bytes.size(), file);
  EXPECT_EQ(ForeignAudio(file), "an MP3 file");
  EXPECT_EQ(ftell(file), 0);
  fclose(file);
}

TEST(ForeignAudio, LooksAtFourFramesWhereThereAreSoMany) {
  const std::string two = Frames("\xFF\xFB\x90\x64", 417);
  EXPECT_EQ(Kind(two + "\xFF\xFB\x90"), "an MP3 file") << "a third header is not there whole";
  EXPECT_EQ(Kind(two + std::string(7, 'x')), "");
  EXPECT_EQ(Kind(two + two.substr(0, 417) + std::string(7, 'x')), "");
  EXPECT_EQ(Kind(two + two + std::string(7, 'x')), "an MP3 file");
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
  const std::string other = Frames("\xFF\xFB\x90\x64", 417).substr(0, 417) + "\xFF\xFB\x94\x64xxx";
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

// Samples of many kinds one after the other, 20,000 of each.
std::vector<int16_t> GeneratedSamples() {
  std::vector<int16_t> samples;
  std::mt19937 random(2);
  std::normal_distribution<double> normal;
  const auto add = [&samples](double value) {
    samples.push_back(static_cast<int16_t>(std::clamp(value, -32768.0, 32767.0)));
  };
  const auto repeat = [](const auto& next) {
    for (int i = 0; i < 20000; ++i) next(i);
  };
  // -1, which quiet noise has often, is half of an MPEG header.
  for (double level = 16; level < 50; level *= 1.1) {
    repeat([&](int) { add(level * normal(random)); });
  }
  for (double level = 2; level < 40000; level *= 2.6) {
    double slow = 0;
    repeat([&](int) { add(level * normal(random)); });
    repeat([&](int) { add(slow = 0.98 * slow + 0.2 * level * normal(random)); });
    repeat([&](int i) { add(level * std::sin(i * i * 4e-5)); });
    repeat([&](int i) { add(level * std::sin(i * (0.01 + level * 1e-5)) + 9000); });
    repeat([&](int i) { add(i / 50 % 2 == 0 ? level : -level); });
    repeat([&](int i) { add(level + i % 7); });
  }
  return samples;
}

TEST(ForeignAudio, TakesNoStartInGeneratedSamplesForAnythingElse) {
  const std::vector<int16_t> samples = GeneratedSamples();
  const auto* const bytes = reinterpret_cast<const unsigned char*>(samples.data());
  const size_t all = samples.size() * sizeof(int16_t);
  size_t starts = 0;
  for (size_t at = 0; at + 8198 < all; at += 2, ++starts) {
    ASSERT_EQ(ForeignAudio({bytes + at, 8198}), "") << at;
  }
  EXPECT_GT(starts, 1000000U);
}

}  // namespace
}  // namespace host
