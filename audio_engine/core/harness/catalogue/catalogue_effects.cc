// Effects and music processing.

#include "bench/effects/routines.h"
#include "harness/catalogue/catalogue_rows.h"
#include "harness/catalogue/hrtf_files.h"

namespace harness {

std::vector<CatalogueRow> EffectsRows() {
  return {
      {.declared = declared::TestIIREq,
       .exercises = "CreateEqualizer over a 44.1 kHz stereo WAVE file"},
      {.declared = declared::TestReverb, .exercises = "CAudioDspProcessor reverb with a preset"},
      {.declared = declared::TestReverbPreset,
       .exercises = "TestReverb over every preset, one output file each"},
      {.declared = declared::TestAudioAccelerate,
       .exercises = "CreateAudioAccelerate, timed with and without acceleration"},
      {.declared = declared::TestHRTF,
       .exercises = "FIR filtering with HRTF kernels (mit_hrtf_get); the selected test",
       .inputs = {kHrtfInput},
       .outputs = {kHrtfOutput}},
      {.declared = declared::TestAudioMusicDetector,
       .exercises = "AudioMusicDetector over \"music.wav\""},
      {.declared = declared::TestMdrc,
       .exercises = "MultibandDrc over \"voice.wav\" into \"mdrc.wav\""},
      {.declared = declared::TestVoiceBeautify,
       .exercises = "IAudioVoiceBeautify, checks output length against input"},
      {.declared = declared::TestVoiceChangerEx,
       .exercises = "IVoiceChangerToolbox, checks output length against input"},
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
      {.declared = declared::TestDrc, .exercises = "Drc over \"music.wav\" into \"drc_out.wav\""},
      {.declared = declared::TestBeatTrack,
       .exercises = "CreateBeatTrack with a BeatTrackNotify writing \"BeatTrack.txt\""},
      {.declared = declared::AccelerateTest,
       .exercises = "AccelerateSoundProcess over \"whenold_8000_1.wav\""},
      {.declared = declared::StretchTest,
       .exercises = "StretchSoundProcess over \"whenold_8000_1.wav\""},
      {.declared = declared::TestEqReverb,
       .exercises = "AudioKaraokeEffectModule equaliser, reverb, DRC and limiter"},
      {.declared = declared::TestAudioEffectModule,
       .exercises = "AudioEffectModule equaliser gains over \"input.wav\""},
      {.declared = declared::TestRateChanger, .exercises = "RateChanger ratio change"},
      {.declared = declared::TestSoundTouchBpm,
       .exercises = "soundtouch::BPMDetect, prints \"bpm=%f\""},
      {.declared = declared::TestSoundTouch,
       .exercises = "soundtouch::SoundTouch tempo, rate and pitch"},
  };
}

}  // namespace harness
