// Effects and music processing.

#include <climits>
#include <cstdint>
#include <string>
#include <utility>

#include "bench/effects/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/file_use.h"
#include "catalogue/hrtf_files.h"

namespace harness {

namespace {

constexpr const char* kNoSamples = "the output is a header without samples";

std::vector<FileUse> ReverbPresetOutputs() {
  std::vector<FileUse> outputs;
  for (int i = 0; i < 14; ++i) {
    outputs.push_back(
        WithForeignHeader(Wave("e:\\reverb\\lumo_reverb_" + std::to_string(i) + ".wav")));
    outputs.back().pattern = "e:\\reverb\\lumo_reverb_*.wav";
  }
  return outputs;
}

// The format that the words of a run name.
std::vector<FileUse> ReverbInputFor(ArgumentWords words) {
  Argument<int> rate;
  Argument<int> channels;
  rate.Parse(words[3]);
  channels.Parse(words[4]);
  const int64_t block = int64_t{rate.Value()} * 2 * channels.Value() / 100;
  const bool some = rate.Value() > 0 && channels.Value() > 0 && block <= INT_MAX;
  return {TakenFor("{pSrcFileName}", {rate.Value(), channels.Value()},
                   some ? static_cast<int>(block) : 0, WaveHeader::kCopied)};
}

FileUse ReverbInput() {
  FileUse use = TakenFor("{pSrcFileName}", {}, 0, WaveHeader::kCopied);
  use.formatOf = "the arguments";
  return use;
}

// The library throws at rates below this one.
FileUse ForTempo(std::string name) {
  FileUse use = AnyWave(std::move(name));
  use.leastRate = 8000;
  use.otherFormat = OtherFormat::kAborts;
  return use;
}

// Samples of all channels are taken for one at 44.1 kHz, 10 ms of the file's own format at a time.
FileUse ForOneChannel(std::string name) {
  FileUse use = AnyWave(std::move(name));
  use.rate = 44100;
  use.channels = 1;
  return use;
}

// Of more channels, the chain answers no frame.
FileUse ForKaraoke(std::string name) {
  FileUse use = TreatedWave(std::move(name), kMusicRates);
  use.channels = 1;
  use.alsoRight = {0, 2};
  use.otherFormat = OtherFormat::kNoOutput;
  return use;
}

// Three times the samples of 10 ms.
FileUse Speech(std::string name) {
  FileUse use =
      TreatedWave(std::move(name), {.leastRate = 8000, .mostRate = 48000, .mostChannels = 8});
  use.blockMs = 30;
  return use;
}

// A part of a block counts as a whole one.
FileUse AnySample(FileUse use) {
  use.blockBytes = 2;
  return use;
}

constexpr UnusedArgument kUnusedPreset[] = {
    {"preset", "the reverb as the engine has it without a preset"}};

const CatalogueRow kRows[] = {
    {.declared = declared::TestIIREq,
     .exercises = "CreateEqualizer over a 44.1 kHz stereo WAVE file",
     .inputs = {TakenFor("c:\\44100_2_music.wav", kStereo44, 1764, WaveHeader::kCopied)},
     .outputs = {WithForeignHeader(Wave("c:\\44100_2_music_eq.wav"))}},
    {.declared = declared::TestReverb,
     .exercises = "CAudioDspProcessor reverb with a preset",
     .inputs = {ReverbInput()},
     .outputs = {WithForeignHeader(Wave("{pDstFileName}"))},
     .inputsFor = ReverbInputFor,
     .unused = kUnusedPreset},
    {.declared = declared::TestReverbPreset,
     .exercises = "TestReverb over every preset, one output file each",
     .inputs = {TakenFor("e:\\lumo.wav", {44100, 1}, 882, WaveHeader::kCopied)},
     .outputs = ReverbPresetOutputs()},
    {.declared = declared::TestAudioAccelerate,
     .exercises = "CreateAudioAccelerate, timed with and without acceleration",
     .inputs = {Optional(TakenFor("F:\\44100_2_new1.wav", kStereo44, 4096, WaveHeader::kCopied),
                         "the routine prints \"fail to open file!\" and leaves no output")},
     .outputs = {WithForeignHeader(Wave("F:\\44100_2_new1_out.wav"))}},
    {.declared = declared::TestHRTF,
     .exercises = "FIR filtering with HRTF kernels (mit_hrtf_get); the selected test",
     .inputs = {kHrtfInput},
     .outputs = {kHrtfOutput}},
    {.declared = declared::TestAudioMusicDetector,
     .exercises = "AudioMusicDetector over \"music.wav\"",
     .inputs = {AnySample(TreatedWave("music.wav", kMusicRates))},
     .outputs = {Wave("music_det.wav")}},
    {.declared = declared::TestMdrc,
     .exercises = "MultibandDrc over \"voice.wav\" into \"mdrc.wav\"",
     .inputs = {TreatedWave("voice.wav", kMusicRates)},
     .outputs = {AnyWave("mdrc.wav")}},
    {.declared = declared::TestVoiceBeautify,
     .exercises = "IAudioVoiceBeautify, checks output length against input",
     .inputs = {TreatedWave("f:\\4.wav", kMusicRates)},
     .outputs = {AnyWave("f:\\4_out6.wav")}},
    {.declared = declared::TestVoiceChangerEx,
     .exercises = "IVoiceChangerToolbox, checks output length against input",
     .inputs = {TreatedWave("voice.wav", kMusicRates)},
     .outputs = {AnyWave("voice_changer_out.wav")}},
    {.declared = declared::TestSpeexConverter,
     .exercises = "IAudioResamplerEx over a 44.1 kHz stereo file",
     .inputs = {Optional(AnyWave("niannujiao_44100_2.wav"), kNoSamples)},
     .outputs = {AnyWave("resampler.wav")}},
    {.declared = declared::TestAudioResamplerEx,
     .exercises = "IAudioResamplerEx WAVE to WAVE at a given rate and channel count",
     .inputs = {Optional(AnyWave("{inFile}"), kNoSamples)},
     .outputs = {AnyWave("{outFile}")}},
    {.declared = declared::TestDrc,
     .exercises = "Drc over \"music.wav\" into \"drc_out.wav\"",
     .inputs = {AnyWave("music.wav")},
     .outputs = {AnyWave("drc_out.wav")}},
    {.declared = declared::TestBeatTrack,
     .exercises = "CreateBeatTrack with a BeatTrackNotify writing \"BeatTrack.txt\"",
     .inputs = {TreatedWave("yedegangqinqu_Fs44100_Ch1.wav",
                            {.leastRate = 8000, .mostRate = 192000, .mostChannels = 8})},
     .outputs = {{.name = "BeatTrack.txt", .mayBeEmpty = true, .content = "text"}}},
    {.declared = declared::AccelerateTest,
     .exercises = "AccelerateSoundProcess over \"whenold_8000_1.wav\"",
     .inputs = {Speech("whenold_8000_1.wav")},
     .outputs = {Wave("out.wav")}},
    {.declared = declared::StretchTest,
     .exercises = "StretchSoundProcess over \"whenold_8000_1.wav\"",
     .inputs = {Speech("whenold_8000_1.wav")},
     .outputs = {Wave("out.wav")}},
    {.declared = declared::TestEqReverb,
     .exercises = "AudioKaraokeEffectModule equaliser, reverb, DRC and limiter",
     .inputs = {ForKaraoke("voice_record.wav")},
     .outputs = {AnyWave("eqreverb.wav")}},
    {.declared = declared::TestAudioEffectModule,
     .exercises = "AudioEffectModule equaliser gains over \"input.wav\"",
     .inputs = {TreatedWave("input.wav", kMusicRates)},
     .outputs = {AnyWave("effect_out.wav")}},
    {.declared = declared::TestRateChanger,
     .exercises = "RateChanger ratio change",
     .inputs = {TreatedWave("test.wav", {.leastRate = 8000, .mostRate = 48000, .mostChannels = 8})},
     .outputs = {AnyWave("rate.wav")}},
    {.declared = declared::TestSoundTouchBpm,
     .exercises = "soundtouch::BPMDetect, prints \"bpm=%f\"",
     .inputs = {ForTempo("yedegangqinqu_Fs44100_Ch1.wav")}},
    {.declared = declared::TestSoundTouch,
     .exercises = "soundtouch::SoundTouch tempo, rate and pitch",
     .inputs = {ForOneChannel("input.wav")},
     .outputs = {Wave("out.wav")}},
};

}  // namespace

std::span<const CatalogueRow> EffectsRows() { return kRows; }

}  // namespace harness
