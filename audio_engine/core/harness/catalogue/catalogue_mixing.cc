// Mixing, recording, playback and whole engines.

#include "bench/mixing/routines.h"
#include "harness/catalogue/catalogue_rows.h"

namespace harness {

std::vector<CatalogueRow> MixingRows() {
  return {
      {.declared = declared::TestAudioMixer,
       .exercises = "CAudioBlockMixer over one file, raw output"},
      {.declared = declared::TestRecordMixer,
       .exercises = "AudioRecordMixer of accompaniment and voice"},
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
       .exercises = "IPushPcmModule over \"Fs44100_Ch2.pcm\" into \"out.pcm\""},
  };
}

}  // namespace harness
