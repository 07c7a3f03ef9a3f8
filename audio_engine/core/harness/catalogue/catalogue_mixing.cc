// Mixing, recording, playback and whole engines.

#include "bench/mixing/routines.h"
#include "harness/catalogue/catalogue_rows.h"

namespace harness {

std::vector<CatalogueRow> MixingRows() {
  return {
      {.declared = declared::TestAudioMixer,
       .exercises = "CAudioBlockMixer over one file, raw output",
       .inputs = {{.name = "c:\\5.wav", .container = Container::kWave}},
       .outputs = {{.name = "c:\\outmix.pcm",
                    .container = Container::kHeaderless,
                    .rate = 16000,
                    .channels = 1}}},
      {.declared = declared::TestRecordMixer,
       .exercises = "AudioRecordMixer of accompaniment and voice",
       .inputs = {{.name = "record_acc.wav", .container = Container::kWave},
                  {.name = "record_voice.wav", .container = Container::kWave}},
       .outputs = {{.name = "record_out.wav", .container = Container::kWave}}},
      {.declared = declared::TestKaraokeFileMixer,
       .exercises = "IKaraokeFileMixer with a FileMixerNotify, waits for the end"},
      {.declared = declared::TestKaraokeRecorder,
       .exercises = "IKaraokeRecorder with line-information and score files"},
      {.declared = declared::TestFilePlayer,
       .exercises = "engine file player of \"music.wav\" with a CaptureFilePlayer"},
      {.declared = declared::TestAudioRecorder,
       .exercises = "engine recorder to \"audiorecorder.aac\""},
      {.declared = declared::TestAudioSaver,
       .exercises =
           "engine file player and saver: \"gangqin.wav\", \"saver.aac\", \"gangqin2.wav\""},
      {.declared = declared::TestSpeechMsg,
       .exercises =
           "ISpeechMsgPlayer with a SpeechMsgPlayerNotify; prints \"Play Done, totalTime = %d.\""},
      {.declared = declared::TestAudioChannel,
       .exercises = "IAudioChannel pack and play loop with the packer and player notifies"},
      {.declared = declared::TestPushPcm,
       .exercises = "IPushPcmModule over \"Fs44100_Ch2.pcm\" into \"out.pcm\"",
       .inputs = {{.name = "Fs44100_Ch2.pcm",
                   .container = Container::kHeaderless,
                   .rate = 44100,
                   .channels = 2,
                   .blockBytes = 3528}},
       .outputs = {{.name = "out.pcm",
                    .container = Container::kHeaderless,
                    .rate = 44100,
                    .channels = 2,
                    .mayBeEmpty = true}}},
  };
}

}  // namespace harness
