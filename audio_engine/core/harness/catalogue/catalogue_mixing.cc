// Mixing, recording, playback and whole engines.

#include "harness/catalogue/catalogue_rows.h"

std::vector<CatalogueRow> MixingRows() {
  return {
      {.routine = "TestAudioMixer", .exercises = "CAudioBlockMixer over one file, raw output"},
      {.routine = "TestRecordMixer", .exercises = "AudioRecordMixer of accompaniment and voice"},
      {.routine = "TestKaraokeFileMixer",
       .exercises = "IKaraokeFileMixer with a FileMixerNotify, waits for the end"},
      {.routine = "TestKaraokeRecorder",
       .exercises = "IKaraokeRecorder with line-information and score files"},
      {.routine = "TestFilePlayer",
       .exercises = "engine file player of \"music.wav\" with a CaptureFilePlayer"},
      {.routine = "TestAudioRecorder", .exercises = "engine recorder to \"audiorecorder.aac\""},
      {.routine = "TestAudioSaver",
       .exercises =
           "engine file player and saver: \"gangqin.wav\", \"saver.aac\", \"gangqin2.wav\""},
      {.routine = "TestSpeechMsg",
       .exercises =
           "ISpeechMsgPlayer with a SpeechMsgPlayerNotify; prints \"Play Done, totalTime = %d.\""},
      {.routine = "TestAudioChannel",
       .parameters = "int codecType",
       .exercises = "IAudioChannel pack and play loop with the packer and player notifies"},
      {.routine = "TestPushPcm",
       .exercises = "IPushPcmModule over \"Fs44100_Ch2.pcm\" into \"out.pcm\""},
  };
}
