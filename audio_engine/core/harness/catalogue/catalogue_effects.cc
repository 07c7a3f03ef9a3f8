// Effects and music processing.

#include <string>
#include <utility>

#include "bench/effects/routines.h"
#include "harness/catalogue/catalogue_rows.h"
#include "harness/catalogue/file_use.h"
#include "harness/catalogue/hrtf_files.h"

namespace harness {

namespace {

std::vector<FileUse> ReverbPresetOutputs() {
  std::vector<FileUse> outputs;
  for (int i = 0; i < 14; ++i) {
    outputs.push_back(
        WithForeignHeader(Wave("e:\\reverb\\lumo_reverb_" + std::to_string(i) + ".wav")));
    outputs.back().pattern = "e:\\reverb\\lumo_reverb_*.wav";
  }
  return outputs;
}

}  // namespace

std::vector<CatalogueRow> EffectsRows() {
  return {
      {.declared = declared::TestIIREq,
       .exercises = "CreateEqualizer over a 44.1 kHz stereo WAVE file",
       .inputs = {Wave("c:\\44100_2_music.wav")},
       .outputs = {WithForeignHeader(Wave("c:\\44100_2_music_eq.wav"))}},
      {.declared = declared::TestReverb,
       .exercises = "CAudioDspProcessor reverb with a preset",
       .inputs = {Wave("{pSrcFileName}")},
       .outputs = {WithForeignHeader(Wave("{pDstFileName}"))}},
      {.declared = declared::TestReverbPreset,
       .exercises = "TestReverb over every preset, one output file each",
       .inputs = {Wave("e:\\lumo.wav")},
       .outputs = ReverbPresetOutputs()},
      {.declared = declared::TestAudioAccelerate,
       .exercises = "CreateAudioAccelerate, timed with and without acceleration",
       .inputs = {Optional(Wave("F:\\44100_2_new1.wav"))},
       .outputs = {WithForeignHeader(Wave("F:\\44100_2_new1_out.wav"))}},
      {.declared = declared::TestHRTF,
       .exercises = "FIR filtering with HRTF kernels (mit_hrtf_get); the selected test",
       .inputs = {kHrtfInput},
       .outputs = {kHrtfOutput}},
      {.declared = declared::TestAudioMusicDetector,
       .exercises = "AudioMusicDetector over \"music.wav\"",
       .inputs = {Wave("music.wav")},
       .outputs = {Wave("music_det.wav")}},
      {.declared = declared::TestMdrc,
       .exercises = "MultibandDrc over \"voice.wav\" into \"mdrc.wav\"",
       .inputs = {Wave("voice.wav")},
       .outputs = {Wave("mdrc.wav")}},
      {.declared = declared::TestVoiceBeautify,
       .exercises = "IAudioVoiceBeautify, checks output length against input",
       .inputs = {Wave("f:\\4.wav")},
       .outputs = {Wave("f:\\4_out6.wav")}},
      {.declared = declared::TestVoiceChangerEx,
       .exercises = "IVoiceChangerToolbox, checks output length against input",
       .inputs = {Wave("voice.wav")},
       .outputs = {Wave("voice_changer_out.wav")}},
      {.declared = declared::TestSpeexConverter,
       .exercises = "IAudioResamplerEx over a 44.1 kHz stereo file",
       .inputs = {{.name = "niannujiao_44100_2.wav",
                   .container = Container::kWave,
                   .optional = true}},
       .outputs = {{.name = "resampler.wav", .container = Container::kWave}}},
      {.declared = declared::TestAudioResamplerEx,
       .exercises = "IAudioResamplerEx WAVE to WAVE at a given rate and channel count",
       .inputs = {{.name = "{inFile}", .container = Container::kWave, .optional = true}},
       .outputs = {{.name = "{outFile}", .container = Container::kWave}}},
      {.declared = declared::TestDrc,
       .exercises = "Drc over \"music.wav\" into \"drc_out.wav\"",
       .inputs = {Wave("music.wav")},
       .outputs = {Wave("drc_out.wav")}},
      {.declared = declared::TestBeatTrack,
       .exercises = "CreateBeatTrack with a BeatTrackNotify writing \"BeatTrack.txt\"",
       .inputs = {Wave("yedegangqinqu_Fs44100_Ch1.wav")},
       .outputs = {{.name = "BeatTrack.txt", .mayBeEmpty = true}}},
      {.declared = declared::AccelerateTest,
       .exercises = "AccelerateSoundProcess over \"whenold_8000_1.wav\"",
       .inputs = {Wave("whenold_8000_1.wav")},
       .outputs = {Wave("out.wav")}},
      {.declared = declared::StretchTest,
       .exercises = "StretchSoundProcess over \"whenold_8000_1.wav\"",
       .inputs = {Wave("whenold_8000_1.wav")},
       .outputs = {Wave("out.wav")}},
      {.declared = declared::TestEqReverb,
       .exercises = "AudioKaraokeEffectModule equaliser, reverb, DRC and limiter",
       .inputs = {Wave("voice_record.wav")},
       .outputs = {Wave("eqreverb.wav")}},
      {.declared = declared::TestAudioEffectModule,
       .exercises = "AudioEffectModule equaliser gains over \"input.wav\"",
       .inputs = {Wave("input.wav")},
       .outputs = {Wave("effect_out.wav")}},
      {.declared = declared::TestRateChanger,
       .exercises = "RateChanger ratio change",
       .inputs = {Wave("test.wav")},
       .outputs = {Wave("rate.wav")}},
      {.declared = declared::TestSoundTouchBpm,
       .exercises = "soundtouch::BPMDetect, prints \"bpm=%f\"",
       .inputs = {Wave("yedegangqinqu_Fs44100_Ch1.wav")}},
      {.declared = declared::TestSoundTouch,
       .exercises = "soundtouch::SoundTouch tempo, rate and pitch",
       .inputs = {Wave("input.wav")},
       .outputs = {Wave("out.wav")}},
  };
}

}  // namespace harness
