// Effects and music processing.

#include "bench/effects/routines.h"
#include "harness/catalogue/catalogue_rows.h"
#include "harness/catalogue/hrtf_files.h"
#include "harness/catalogue/invoke.h"

std::vector<CatalogueRow> EffectsRows() {
  return {
      {.routine = "TestIIREq", .exercises = "CreateEqualizer over a 44.1 kHz stereo WAVE file"},
      {.routine = "TestReverb",
       .parameters = "const char* pSrcFileName, const char* pDstFileName, int preset, int "
                     "sampleRate, int channles",
       .exercises = "CAudioDspProcessor reverb with a preset"},
      {.routine = "TestReverbPreset",
       .exercises = "TestReverb over every preset, one output file each"},
      {.routine = "TestAudioAccelerate",
       .exercises = "CreateAudioAccelerate, timed with and without acceleration"},
      {.routine = "TestHRTF",
       .exercises = "FIR filtering with HRTF kernels (mit_hrtf_get); the selected test",
       .built = true,
       .run = Invoke<TestHRTF>,
       .inputs = {kHrtfInput},
       .outputs = {kHrtfOutput}},
      {.routine = "TestAudioMusicDetector", .exercises = "AudioMusicDetector over \"music.wav\""},
      {.routine = "TestMdrc", .exercises = "MultibandDrc over \"voice.wav\" into \"mdrc.wav\""},
      {.routine = "TestVoiceBeautify",
       .exercises = "IAudioVoiceBeautify, checks output length against input"},
      {.routine = "TestVoiceChangerEx",
       .exercises = "IVoiceChangerToolbox, checks output length against input"},
      {.routine = "TestSpeexConverter",
       .exercises = "IAudioResamplerEx over a 44.1 kHz stereo file"},
      {.routine = "TestAudioResamplerEx",
       .parameters = "const char* inFile, const char* outFile, int outFS, int outChannels",
       .exercises = "IAudioResamplerEx WAVE to WAVE at a given rate and channel count"},
      {.routine = "TestDrc", .exercises = "Drc over \"music.wav\" into \"drc_out.wav\""},
      {.routine = "TestBeatTrack",
       .exercises = "CreateBeatTrack with a BeatTrackNotify writing \"BeatTrack.txt\""},
      {.routine = "AccelerateTest",
       .result = "int",
       .exercises = "AccelerateSoundProcess over \"whenold_8000_1.wav\""},
      {.routine = "StretchTest",
       .result = "int",
       .exercises = "StretchSoundProcess over \"whenold_8000_1.wav\""},
      {.routine = "TestEqReverb",
       .exercises = "AudioKaraokeEffectModule equaliser, reverb, DRC and limiter"},
      {.routine = "TestAudioEffectModule",
       .exercises = "AudioEffectModule equaliser gains over \"input.wav\""},
      {.routine = "TestRateChanger", .exercises = "RateChanger ratio change"},
      {.routine = "TestSoundTouchBpm", .exercises = "soundtouch::BPMDetect, prints \"bpm=%f\""},
      {.routine = "TestSoundTouch", .exercises = "soundtouch::SoundTouch tempo, rate and pitch"},
  };
}
