// Every routine that reads a WAVE, on WAVEs of every kind: what comes of each is one table.

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "bench_process.h"
#include "catalogue/catalogue.h"
#include "support/file_bytes.h"
#include "support/talk.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

constexpr WavFormat kMono8 = {.channels = 1, .rate = 8000};
constexpr WavFormat kMono16 = {.channels = 1, .rate = 16000};
constexpr WavFormat kMono32 = {.channels = 1, .rate = 32000};
constexpr WavFormat kMono44 = {.channels = 1, .rate = 44100};
constexpr WavFormat kStereo44 = {.channels = 2, .rate = 44100};

// The files of a run: places in the workspace, and the format that is right for all of them.
struct Row {
  std::vector<std::string> command;
  std::vector<std::string> inputs;
  WavFormat right;
  // For each of the inputs in turn, what comes of a run where only this one is spoilt. A letter for
  // each of kSpoilt: the first of the cause, or as kCauses has it.
  std::vector<std::string> causes;
};

void PrintTo(const Row& row, std::ostream* stream) { *stream << row.command[0]; }

const std::map<char, std::string> kCauses = {{'.', "none"},
                                             {'f', "input_format"},
                                             {'s', "input_too_short"},
                                             {'a', "input_as_it_is"},
                                             {'w', "input_not_whole"},
                                             {'e', "output_empty"},
                                             {'c', "crash"},
                                             {'g', "guard"}};

// Half a second of what sounds like speech, in any format.
std::string Speech(const WavFormat& format) {
  const Samples talk = Talk(static_cast<int>(format.rate), 0.5, 7);
  std::string body;
  for (const short sample : talk) {
    for (int channel = 0; channel < format.channels; ++channel) {
      std::string bytes = SampleBytes({sample});
      if (format.bits == 8) bytes = bytes.substr(1);
      if (format.bits > 16) bytes = std::string(format.bits / 8 - 2, '\x11') + bytes;
      body += bytes;
    }
  }
  return body;
}

std::string Wave(const WavFormat& format, const std::string& chunks = "") {
  return Riff(PlainFormat(format) + chunks + Chunk("data", Speech(format)));
}

WavFormat WithBits(WavFormat format, uint16_t bits, uint16_t tag = 1) {
  format.bits = bits;
  format.tag = tag;
  format.blockAlign = static_cast<uint16_t>(format.channels * bits / 8);
  return format;
}

WavFormat WithChannels(WavFormat format, uint16_t channels) {
  format.channels = channels;
  return WithBits(format, 16);
}

// The ways in which an input is spoilt, in the order of the table.
struct Spoilt {
  const char* name;
  std::string (*bytes)(const WavFormat& right);
};

const Spoilt kSpoilt[] = {
    {"8 bit", [](const WavFormat& right) { return Wave(WithBits(right, 8)); }},
    {"24 bit", [](const WavFormat& right) { return Wave(WithBits(right, 24)); }},
    {"32 bit", [](const WavFormat& right) { return Wave(WithBits(right, 32)); }},
    {"float", [](const WavFormat& right) { return Wave(WithBits(right, 32, 3)); }},
    {"A-law", [](const WavFormat& right) { return Wave(WithBits(right, 8, 6)); }},
    {"mu-law", [](const WavFormat& right) { return Wave(WithBits(right, 8, 7)); }},
    {"3 channels", [](const WavFormat& right) { return Wave(WithChannels(right, 3)); }},
    {"48 kHz",
     [](const WavFormat& right) {
       WavFormat other = right;
       other.rate = 48000;
       return Wave(other);
     }},
    {"mono for stereo",
     [](const WavFormat& right) {
       return Wave(WithChannels(right, static_cast<uint16_t>(3 - right.channels)));
     }},
    {"LIST",
     [](const WavFormat& right) {
       return Wave(right, Chunk("LIST", "INFOISFT" + Chunk("", "Lavf59.27.100")));
     }},
    {"extensible",
     [](const WavFormat& right) {
       return Riff(ExtensibleFormat(right, 1) + Chunk("data", Speech(right)));
     }},
    {"cut in half",
     [](const WavFormat& right) {
       const std::string whole = Wave(right);
       return whole.substr(0, whole.size() / 2);
     }},
    {"0 bytes", [](const WavFormat&) { return std::string(); }},
    {"header only",
     [](const WavFormat& right) { return Riff(PlainFormat(right) + Chunk("data", "")); }}};

// bits, laws | 3 channels, rate, count | LIST, extensible | half, 0, header
const Row kRows[] = {
    {{"TestEchoDelayEst", "a", "b"}, {"a", "b"}, kMono16, {"ffffffaaaaawss", "ffffffaaaaawss"}},
    {{"TestEchoDelayEstAndAEC", "a", "b", "o"},
     {"a", "b"},
     kMono16,
     {"ffffffaaaaawss", "ffffffaaaffwss"}},
    {{"TestZUAECProcess", "a", "b", "o", "0"},
     {"a", "b"},
     kMono16,
     {"ffffffaaa..w..", "ffffffaaaffwss"}},
    {{"TestZUAec", "a", "b", "o", "true"},
     {"a", "b"},
     kMono16,
     {"fffffffff..wss", "fffffffff..wss"}},
    // Of three channels one comes out silent.
    {{"TestAecDenoiseInternal", "a", "o"}, {"a"}, kMono16, {"ffffffg....wss"}},
    {{"TestHardwareAec"}, {"noise_in.wav"}, kMono32, {"ffffffaaa..wss"}},
    {{"TestSoftAec"},
     {"music_delay/findcap.wav", "music_delay/findreceive.wav"},
     kMono16,
     {"ffffffaaa..wss", "ffffffaaa..wss"}},
    {{"TestEchoDetection"},
     {"C/aecfiles/farend.wav", "C/aecfiles/nearend.wav"},
     kMono16,
     {"ffffffaaa..ws.", "ffffffaaa..ws."}},
    {{"TestAGCProcess", "a", "o"}, {"a"}, kMono16, {"ffffffaaaffwss"}},
    {{"TestVADProcess", "a", "o", "r"}, {"a"}, kMono16, {"ffffffaaaffwee"}},
    {{"TestZUAudioProcessing", "a", "b", "o"},
     {"a", "b"},
     kMono16,
     {"ffffffaaaffwss", "ffffffaaaaawss"}},
    {{"TestHPFProcess", "a", "o"}, {"a"}, kMono16, {"ffffff.....wss"}},
    {{"TestVADProcessRefined", "a", "o", "none", "0"}, {"a"}, kMono16, {"ffffffc.c..wss"}},
    {{"TestVadResult"}, {"swb_ref_16kHz.wav"}, kMono16, {"ffffff.....wss"}},
    {{"TestSpeexAgc"}, {"music.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestWebrtcAgc"}, {"niannujiao_44100_1.wav"}, kMono44, {"ffffff.....wss"}},
    {{"TestDenoiseProcess"}, {"ns_in.wav"}, kMono16, {"ffffff.....wss"}},
    {{"TestZUEAACCodec"}, {"F/44100_2_new1.wav"}, kStereo44, {"fffffffff..wss"}},
    {{"TestEncodeFile", "a", "o"}, {"a"}, kMono16, {"fffffffffaawss"}},
    {{"TestVADCodecMosByVADResult", "a", "o", "r", "2"}, {"a"}, kMono16, {"fffffffff..wss"}},
    {{"TestZUAudioProcessor"}, {"player.wav"}, kStereo44, {"fffffffff..wss"}},
    {{"TestZUEncode", "a", "o", "2", "false"}, {"a"}, kMono16, {"fffffffff..wss"}},
    {{"newTestZUEncode", "a", "o", "2", "18000", "16000", "false"},
     {"a"},
     kMono16,
     {"fffffffff..wss"}},
    {{"TestZUCodecNew", "a", "o", "2"}, {"a"}, kMono16, {"fffffffff..wss"}},
    {{"TestMockVADMos", "a", "2"},
     {"a", "a.preproc.wav"},
     kMono16,
     {"ffffff.....wss", "fffffffffffwee"}},
    {{"calAACMos", "a", "o", "2", "18000", "16000"}, {"a"}, kMono16, {"ffffff.....wss"}},
    {{"TestIIREq"}, {"C/44100_2_music.wav"}, kStereo44, {"ffffffaaaffwss"}},
    {{"TestReverb", "a", "o", "0", "44100", "2"}, {"a"}, kStereo44, {"ffffffaaaffwss"}},
    {{"TestReverbPreset"}, {"E/lumo.wav"}, kMono44, {"ffffffaaaffwss"}},
    {{"TestAudioAccelerate"}, {"F/44100_2_new1.wav"}, kStereo44, {"ffffffaaaaawee"}},
    {{"TestAudioMusicDetector"}, {"music.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestMdrc"}, {"voice.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestVoiceBeautify"}, {"F/4.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestVoiceChangerEx"}, {"voice.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestSpeexConverter"}, {"niannujiao_44100_2.wav"}, kStereo44, {"ffffff.....wee"}},
    {{"TestAudioResamplerEx", "a", "o", "16000", "1"}, {"a"}, kStereo44, {"ffffff.....wee"}},
    {{"TestDrc"}, {"music.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestBeatTrack"}, {"yedegangqinqu_Fs44100_Ch1.wav"}, kMono44, {"ffffff.....wss"}},
    {{"AccelerateTest"}, {"whenold_8000_1.wav"}, kMono8, {"ffffff.....wss"}},
    {{"StretchTest"}, {"whenold_8000_1.wav"}, kMono8, {"ffffff.....wss"}},
    {{"TestEqReverb"}, {"voice_record.wav"}, kStereo44, {"fffffff....wss"}},
    {{"TestAudioEffectModule"}, {"input.wav"}, kStereo44, {"ffffff.....wss"}},
    {{"TestRateChanger"}, {"test.wav"}, kMono16, {"ffffff.....wss"}},
    {{"TestSoundTouchBpm"}, {"yedegangqinqu_Fs44100_Ch1.wav"}, kMono44, {"ffffff.....wss"}},
    {{"TestSoundTouch"}, {"input.wav"}, kMono44, {"ffffffaaa..wss"}},
    {{"TestAudioMixer"}, {"C/5.wav"}, kMono16, {"ffffffaaaaawss"}},
    {{"TestRecordMixer"},
     {"record_acc.wav", "record_voice.wav"},
     kMono16,
     {"ffffffaaa..wss", "ffffffaaa..wss"}},
};

class FormatTable : public testing::TestWithParam<Row> {
 protected:
  static void Put(const std::string& place, const std::string& bytes) {
    const fs::path path = "bench_work/" + place;
    fs::create_directories(path.parent_path());
    WriteFile(path, bytes);
  }

  static nlohmann::json Run(const std::vector<std::string>& words) {
    std::vector<std::string> command = {AUDIO_BENCH, "run"};
    command.insert(command.end(), words.begin(), words.end());
    command.insert(command.end(), {"--json", "report.json"});
    fs::remove("report.json");
    RunProcess(command);
    return nlohmann::json::parse(ReadFile("report.json"));
  }

  TemporaryDirectory m_directory;
};

TEST_P(FormatTable, HoldsForEveryInput) {
  const Row& row = GetParam();
  const std::string right = Wave(row.right);
  for (const std::string& input : row.inputs) Put(input, right);
  const nlohmann::json good = Run(row.command);
  if (good["cause"] == "not_runnable") GTEST_SKIP() << good["reason"];
  EXPECT_THAT(good["cause"], testing::AnyOf("none", "guard_warning")) << good["reason"];

  ASSERT_EQ(row.causes.size(), row.inputs.size());
  for (size_t i = 0; i < row.inputs.size(); ++i) {
    ASSERT_EQ(row.causes[i].size(), std::size(kSpoilt));
    std::string got;
    std::string reasons;
    for (size_t k = 0; k < std::size(kSpoilt); ++k) {
      Put(row.inputs[i], kSpoilt[k].bytes(row.right));
      const nlohmann::json report = Run(row.command);
      // What guards warn of is not about the format.
      char letter = report["cause"] == "guard_warning" ? '.' : '?';
      for (const auto& [each, cause] : kCauses) {
        if (cause == report["cause"]) letter = each;
      }
      got += letter;
      reasons += std::string(kSpoilt[k].name) + ": " + report["reason"].get<std::string>() + "\n";
    }
    Put(row.inputs[i], right);
    EXPECT_EQ(got, row.causes[i]) << row.inputs[i] << "\n" << reasons;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FormatTable, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& info) {
                           return info.param.command[0];
                         });

}  // namespace
