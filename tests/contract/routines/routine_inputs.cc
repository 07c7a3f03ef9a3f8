#include "contract/routines/routine_inputs.h"

#include <map>

#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/audio_processor.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/codec/local_codec.h"
#include "fake_engine/codec/net_codec_stream_format.h"
#include "fake_engine/codec/stream_to_aac.h"
#include "fake_engine/enhancement/voice_detection.h"

using harness::CatalogueRow;
using harness::Container;
using harness::FileUse;

namespace {

// A frame of ten bytes, by a header of two bytes and by one of seven.
const std::string kFrame =
    "\x08\xFC\xFF\xFF\x01\x40"
    "abcd";

const std::map<std::string_view, std::vector<std::string_view>> kWords = {
    {"TestEchoDelayEst", {"far.wav", "near.wav"}},
    {"TestEchoDelayEstAndAEC", {"far.wav", "near.wav", "out.wav"}},
    {"TestZUAECProcess", {"far.wav", "near.wav", "out.wav", "40"}},
    {"TestAECProcess", {"far.pcm", "near.pcm", "out.pcm", "40"}},
    {"TestZUAec", {"near.wav", "far.wav", "out.wav", "true"}},
    {"TestAecDenoiseInternal", {"in.wav", "out.wav"}},
    {"TestAGCProcess", {"in.wav", "out.wav"}},
    {"TestVADProcess", {"in.wav", "out.wav", "result.wav"}},
    {"TestNoizeusEx", {"1", "1"}},
    {"TestZUAudioProcessing", {"far.wav", "near.wav", "out.wav"}},
    {"TestHPFProcess", {"in.wav", "out.wav"}},
    {"TestVADProcessRefined", {"in.wav", "out.wav", "10,20", "5"}},
    {"TestVAD", {"v1"}},
    {"TestEncodeFile", {"in.wav", "out.rec"}},
    {"TestDecodeFile", {"packets", "out.pcm", "SILK_CODEC"}},
    {"TestVADCodecMosByVADResult", {"in.wav", "out.wav", "result.wav", "51"}},
    {"TestZUEncode", {"in.wav", "out.enc", "51", "true"}},
    {"TestZUDecode", {"in.enc", "out.wav", "51", "false"}},
    {"newTestZUEncode", {"in.wav", "out.enc", "51", "64000", "48000", "false"}},
    {"newTestZUDecode", {"in.enc", "out.wav", "51", "48000", "false"}},
    {"TestZUCodecNew", {"in.wav", "out.wav", "51"}},
    {"TestMockVADMos", {"ref.wav", "51"}},
    {"calAACMos", {"in.wav", "unused.wav", "51", "64000", "48000"}},
    {"TestReverb", {"in.wav", "out.wav", "3", "16000", "1"}},
    {"TestAudioResamplerEx", {"in.wav", "out.wav", "8000", "1"}},
    {"TestAudioChannel", {"51"}}};

// The content of streams and texts.
const std::map<std::string_view, std::string> kContents = {
    {"F:/Stream/vad/input/vad_input_description.txt", "1\na.wav 1,10,20,\n"},
    {"/sdcard/dangni_line_info.txt", "1 0.5 2.5\n"},
    {"/sdcard/dangni_score_time_range.txt", "0.5 1 0 1 60\n"},
    {"packets", std::string("\x04\0abcd\x02\0ef", 10)},
    {"packer.out", std::string("\x04\0ab\x04\0cd", 8)}};

// Inputs of which a block is longer than those of the others.
constexpr std::string_view kLongInputs[] = {"F:\\44100_2_new1.wav",
                                            "Fs44100_Ch2.pcm",
                                            "c:\\44100_2_music.wav",
                                            "e:\\lumo.wav",
                                            "/sdcard/ZUAudioDemo/44100_2.pcm",
                                            "whenold_8000_1.wav"};

std::string Filled(std::string name, const CatalogueRow& row) {
  const std::vector<harness::Parameter> parameters = Parameters(row.declared.words);
  const std::vector<std::string_view> words = WordsOf(row);
  for (size_t i = 0; i < parameters.size() && i < words.size(); ++i) {
    const std::string place = "{" + std::string(parameters[i].name) + "}";
    const size_t at = name.find(place);
    if (at != std::string::npos) name.replace(at, place.size(), words[i]);
  }
  return name;
}

std::vector<std::string> Names(const std::vector<FileUse>& files, const CatalogueRow& row) {
  std::vector<std::string> names;
  for (const FileUse& file : files) names.push_back(Filled(file.name, row));
  return names;
}

// Two blocks of 10 ms and a part of one, or more.
std::vector<short> Samples(std::string_view name, const WavFormat& format) {
  size_t count = format.rate == 16000 ? 350 : 3000;
  for (const std::string_view longer : kLongInputs) count = name == longer ? 5000 : count;
  std::vector<short> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = static_cast<short>(i * 37 % 2000);
  return samples;
}

void Put(FakeEngine& engine, const std::string& name, Container container,
         const WavFormat& format) {
  const auto known = kContents.find(name);
  if (known != kContents.end()) {
    engine.PutFile(name, known->second);
  } else if (container == Container::kWave) {
    engine.PutFile(name, WavBytes(format, Samples(name, format)));
  } else if (container == Container::kHeaderless) {
    engine.PutSamples(name, Samples(name, format));
  } else {
    engine.PutFile(name, kFrame + kFrame + kFrame);
  }
}

}  // namespace

std::vector<const CatalogueRow*> RunnableRows() {
  std::vector<const CatalogueRow*> rows;
  for (const CatalogueRow& row : harness::Catalogue()) {
    if (row.declared.run != nullptr) rows.push_back(&row);
  }
  return rows;
}

std::vector<std::string_view> WordsOf(const CatalogueRow& row) {
  const auto found = kWords.find(row.declared.words.name);
  return found != kWords.end() ? found->second : std::vector<std::string_view>();
}

std::vector<std::string> InputsOf(const CatalogueRow& row) {
  return Names(harness::Inputs(row, WordsOf(row)), row);
}

std::vector<std::string> OutputsOf(const CatalogueRow& row) {
  return Names(harness::Outputs(row, WordsOf(row)), row);
}

void SetAnswers(FakeEngine& engine) {
  engine.nowMs = 1000;  // A time is no duration.
  engine.script<CodecFormatScript>().format = [](int id) {
    AudioStreamFormat format = {};
    format.iRawCodecId = id;
    format.iSampleRate = 16000;
    format.iNumOfChannels = 1;
    format.iSamplesOfFrame = 160;
    return format;
  };
  engine.script<NetCodecStreamFormatScript>().fill = [](ZUAudio::NetCodecStreamFormat& formats) {
    formats.iNetSilk16KFormat.iAudioFormat = {};
    formats.iNetPcmFormat.iAudioFormat = {};
    formats.iNetAACPlusFormat.iAudioFormat = {};
    formats.iNetAACPlusFormat.iAudioFormat.iSamplesOfFrame = 160;
    formats.iNetAACPlusFormat.iAudioFormat.iNumOfFramesInPacket = 2;
  };
  engine.script<AudioCodecScript>().encoderSize = 320;
  // Frames of samples, samples of frames.
  engine.script<AudioCodecScript>().process = [](int, const std::string& in) {
    return in.substr(0, 2) == kFrame.substr(0, 2) ? std::string(320, 'd') : kFrame;
  };
  engine.script<AudioProcessorScript>().process = [](const std::string&) { return "processed"; };
  engine.script<LocalCodecScript>().encoderBytes = 320;
  engine.script<StreamToAacScript>().convert = [](const std::string&) { return "converted"; };
  // Two frames of speech, and then none.
  engine.script<VoiceDetectionScript>().detect = [calls = 0](const short*, unsigned) mutable {
    return ++calls <= 4 ? vadResultIsActive : vadResultIsPassive;
  };
}

void PutInputs(FakeEngine& engine, const CatalogueRow& row, const WavFormat& format) {
  for (const FileUse& file : harness::Inputs(row, WordsOf(row))) {
    const std::string name = Filled(file.name, row);
    Put(engine, name, file.container, format);
    if (row.listed == nullptr) continue;
    for (const FileUse& listed : row.listed(engine.Bytes(name))) {
      Put(engine, listed.name, listed.container, format);
    }
  }
}
