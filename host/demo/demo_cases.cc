#include "demo/demo_cases.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

#include "catalogue/rows.h"
#include "harness/noizeus_cases.h"

namespace host {

namespace {

// The words of those that take any.
const std::vector<DemoCase>& Worded() {
  static const std::vector<DemoCase> cases = {
      {"TestEchoDelayEst", {"demo/far.wav", "demo/near.wav"}},
      {"TestEchoDelayEstAndAEC", {"demo/far.wav", "demo/near.wav", "demo/out.wav"}},
      {"TestZUAECProcess", {"demo/far.wav", "demo/near.wav", "demo/out.wav", "89"}},
      {"TestAECProcess", {"demo/far.pcm", "demo/near.pcm", "demo/out.pcm", "89"}},
      {"TestZUAec", {"demo/near.wav", "demo/far.wav", "demo/out.wav", "true"}},
      {"TestAecDenoiseInternal", {"demo/noisy.wav", "demo/out.wav"}},
      {"TestNoizeusEx", {"4", "0"}},
      {"TestAGCProcess", {"demo/speech.wav", "demo/out.wav"}},
      {"TestVADProcess", {"demo/speech.wav", "demo/out.wav", "demo/vad.wav"}},
      {"TestZUAudioProcessing", {"demo/far.wav", "demo/near.wav", "demo/out.wav"}},
      {"TestHPFProcess", {"demo/speech.wav", "demo/out.wav"}},
      {"TestVADProcessRefined", {"demo/speech.wav", "demo/out.wav", "none", "0"}},
      {"TestVAD", {"demo"}},
      {"TestEncodeFile", {"demo/band.wav", "demo/out.enc"}},
      {"TestDecodeFile", {"out.enc", "demo/out.pcm", "4"}},
      {"TestVADCodecMosByVADResult", {"demo/speech.wav", "demo/out.wav", "demo/vad.wav", "50"}},
      {"TestZUEncode", {"demo/speech.wav", "demo/out.stream", "50", "true"}},
      {"TestZUDecode", {"demo/speech.stream", "demo/out.wav", "50", "true"}},
      {"newTestZUEncode", {"demo/speech.wav", "demo/out.stream", "50", "18000", "16000", "true"}},
      {"newTestZUDecode", {"demo/speech.stream", "demo/out.wav", "50", "16000", "true"}},
      {"TestZUCodecNew", {"demo/speech.wav", "demo/out.wav", "50"}},
      {"TestMockVADMos", {"demo/speech.wav", "50"}},
      {"calAACMos", {"demo/band.wav", "out", "35", "128000", "44100"}},
      {"TestReverb", {"demo/band.wav", "demo/out.wav", "1", "44100", "2"}},
      {"TestAudioResamplerEx", {"demo/band.wav", "demo/out.wav", "48000", "2"}},
      {"TestAudioChannel", {"50"}},
  };
  return cases;
}

struct Place {
  std::string_view name;
  Sound sound;
};

constexpr Place kPlaces[] = {
    {"/sdcard/ZUAudioDemo/44100_2.pcm", Sound::kMelody},
    {"demo/far.wav", Sound::kFar},
    {"demo/near.wav", Sound::kNear},
    {"demo/far.pcm", Sound::kFar},
    {"demo/near.pcm", Sound::kNear},
    {"demo/noisy.wav", Sound::kNoisy},
    {"demo/speech.wav", Sound::kSpeech},
    {"demo/speech.wav.preproc.wav", Sound::kSpeech},
    {"demo/band.wav", Sound::kBand},
    {"wrpcmin.pcm", Sound::kNoisy},
    {"in/ns_in_32000.wav", Sound::kNoisy},
    {"in/ns_step_32000.wav", Sound::kNoisy},
    {"in/sp01_airport_sn5.wav", Sound::kNoisy},
    {"in/sp22_street_sn10.wav", Sound::kNoisy},
    {"in/sp22_train_sn10.wav", Sound::kNoisy},
    {"in/sp22_train_sn5.wav", Sound::kNoisy},
    {"in/mirela_ns_off.wav", Sound::kNoisy},
    {"in/wrpcmin32000.wav", Sound::kNoisy},
    {"in/wrpcmin_ka.wav", Sound::kNoisy},
    {"in/after_aec.wav", Sound::kNoisy},
    {"noise_in.wav", Sound::kNoisy},
    {"music_delay/findcap.wav", Sound::kNear},
    {"music_delay/findreceive.wav", Sound::kFar},
    {"C:\\aecfiles\\farend.wav", Sound::kFar},
    {"C:\\aecfiles\\nearend.wav", Sound::kNear},
    {"F:\\sample\\test.pcm", Sound::kFar},
    {"F:\\sample\\test2.pcm", Sound::kNear},
    {"F:/Stream/vad/input/speech.wav", Sound::kSpeech},
    {"F:/Stream/vad/input/noisy.wav", Sound::kNoisy},
    {"music.wav", Sound::kBand},
    {"niannujiao_44100_1.wav", Sound::kSong},
    {"niannujiao_44100_2.wav", Sound::kBand},
    {"ns_in.wav", Sound::kNoisy},
    {"swb_ref_16kHz.wav", Sound::kSpeech},
    {"audio_test.pcm", Sound::kBand},
    {"F:\\44100_2_new1.wav", Sound::kBand},
    {"yedegangqinqu_Fs32000_Ch1.pcm", Sound::kBand},
    {"yedegangqinqu_Fs44100_Ch1.wav", Sound::kBand},
    {"player.wav", Sound::kBand},
    {"c:\\44100_2_music.wav", Sound::kBand},
    {"e:\\lumo.wav", Sound::kSong},
    {"voice.wav", Sound::kSpeech},
    {"f:\\4.wav", Sound::kSong},
    {"whenold_8000_1.wav", Sound::kSpeech},
    {"voice_record.wav", Sound::kSong},
    {"input.wav", Sound::kBand},
    {"test.wav", Sound::kBand},
    {"c:\\5.wav", Sound::kSpeech},
    {"record_acc.wav", Sound::kBand},
    {"record_voice.wav", Sound::kSong},
    {"gangqin.wav", Sound::kBand},
    {"gangqin2.wav", Sound::kSong},
    {"Fs44100_Ch2.pcm", Sound::kBand},
    {"/sdcard/dangni_mix.wav", Sound::kSong},
    {"/sdcard/dangni_acc.wav", Sound::kBand},
};

struct Text {
  std::string_view name;
  std::string_view text;
};

// The lines and notes are those of the song; times in ms.
constexpr Text kTexts[] = {
    {"F:/Stream/vad/input/vad_input_description.txt", "2\nspeech.wav 0,\nnoisy.wav 0,\n"},
    {"/sdcard/dangni_line_info.txt", "0 600 5400\n1 5400 9600"},
    {"/sdcard/dangni_score_time_range.txt",
     "600 1150 0 0 62\n1200 1750 0 0 64\n1800 2350 0 0 66\n2400 2950 0 0 67\n"
     "3000 4150 0 0 69\n4200 5350 1 0 66\n5400 5950 0 1 67\n6000 6550 0 1 66\n"
     "6600 7150 0 1 64\n7200 7750 0 1 66\n7800 10150 1 1 62"},
};

DemoCase CaseOf(const CatalogueRow& row) {
  const std::string_view name = row.declared.words.name;
  const auto& worded = Worded();
  const auto found = std::find_if(worded.begin(), worded.end(),
                                  [&](const DemoCase& each) { return each.routine == name; });
  return found == worded.end() ? DemoCase{name} : *found;
}

}  // namespace

const std::vector<DemoCase>& DemoCases() {
  static const std::vector<DemoCase> cases = [] {
    std::vector<DemoCase> all;
    for (const CatalogueRow& row : harness::Catalogue()) {
      if (row.declared.run != nullptr && row.calledBy.empty()) all.push_back(CaseOf(row));
    }
    return all;
  }();
  return cases;
}

std::optional<Sound> SoundOf(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kPlaces), std::end(kPlaces),
                                         [&](const Place& place) { return place.name == name; });
  if (found == std::end(kPlaces)) return std::nullopt;
  return found->sound;
}

std::optional<SentenceName> SentenceOf(std::string_view name) {
  constexpr std::string_view kFolder = "NOIZEUS/in/";
  if (!name.starts_with(kFolder)) return std::nullopt;
  const std::string base = std::filesystem::path(name).stem();
  int number = 0;
  int snr = 0;
  char noise[32] = "";
  const int fields = sscanf(base.c_str(), "sp%d_%31[a-z]_sn%d", &number, noise, &snr);
  if (fields == 1) return SentenceName{number - 1};
  if (fields != 3) return std::nullopt;
  const auto& noises = harness::kNoizeusNoises;
  const auto& levels = harness::kNoizeusLevels;
  const auto place = std::find(std::begin(noises), std::end(noises), std::string_view(noise));
  const auto level = std::find(std::begin(levels), std::end(levels), snr);
  if (place == std::end(noises) || level == std::end(levels)) return std::nullopt;
  return SentenceName{number - 1, static_cast<int>(place - std::begin(noises)),
                      static_cast<int>(level - std::begin(levels))};
}

std::string_view TextOf(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                         [&](const Text& text) { return text.name == name; });
  return found == std::end(kTexts) ? std::string_view() : found->text;
}

const std::vector<StreamMaker>& StreamMakers() {
  static const std::vector<StreamMaker> makers = {
      {"demo/speech.stream",
       "TestZUEncode",
       {"demo/speech.wav", "demo/speech.stream", "50", "true"}},
      {"packer.out", "TestZUEncode", {"demo/speech.wav", "packer.out", "2", "false"}},
      {"packer.48k.aac", "TestZUEncode", {"demo/band.wav", "packer.48k.aac", "35", "false"}},
      {"out.enc", "TestAudioEncode", {}},
  };
  return makers;
}

}  // namespace host
