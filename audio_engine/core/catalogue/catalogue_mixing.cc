// Mixing, recording, playback and whole engines.

#include <string>
#include <utility>

#include "bench/mixing/routines.h"
#include "catalogue/catalogue_rows.h"
#include "catalogue/codec_needs.h"
#include "catalogue/file_use.h"

namespace harness {

namespace {

FileUse Recording(std::string name) {
  return {.name = std::move(name), .container = Container::kRecording};
}

// With room for more than the others have.
FileUse Accompaniment(std::string name) {
  FileUse use = AnyWave(std::move(name));
  use.mostBlockSamples = 65536;
  return use;
}

constexpr const char* kBriefly = "the recorder is stopped after 0.1 s";
constexpr const char* kPlayed = "it is played for 10 s";

const CatalogueRow kRows[] = {
    {.declared = declared::TestAudioMixer,
     .exercises = "CAudioBlockMixer over one file, raw output",
     .inputs = {TakenFor("c:\\5.wav", kMono16, 320, WaveHeader::kSkipped)},
     .outputs = {{.name = "c:\\outmix.pcm",
                  .container = Container::kHeaderless,
                  .rate = 16000,
                  .channels = 1}}},
    {.declared = declared::TestRecordMixer,
     .exercises = "AudioRecordMixer of accompaniment and voice",
     .inputs = {Accompaniment("record_acc.wav"),
                InFormatOf("record_acc.wav",
                           ReadInPart(Accompaniment("record_voice.wav"),
                                      "it may be longer than the accompaniment"),
                           OtherFormat::kAsItIs)},
     .outputs = {AnyWave("record_out.wav")}},
    {.declared = declared::TestKaraokeFileMixer,
     .exercises = "IKaraokeFileMixer with a FileMixerNotify, waits for the end",
     .inputs = {Recording("voice_record.wav"), Recording("music.wav")},
     .outputs = {Other("output.aac", "AAC stream")},
     .lacking = NeedsFamily<kAudioCodecAAC>},
    {.declared = declared::TestKaraokeRecorder,
     .exercises = "IKaraokeRecorder with line-information and score files",
     .inputs = {ReadInPart(Dispensable(Recording("/sdcard/dangni_mix.wav"),
                                       "the accompaniment is played, if that is there"),
                           kBriefly),
                ReadInPart(Dispensable(Recording("/sdcard/dangni_acc.wav"),
                                       "the guide is played, if that is there"),
                           kBriefly),
                Dispensable(Text("/sdcard/dangni_line_info.txt"), "no line is scored"),
                Dispensable(Text("/sdcard/dangni_score_time_range.txt"), "no note is scored")},
     .outputs = {Wave("/sdcard/voice_record.wav")},
     .device = Device::kBoth,
     .seconds = 0.1},
    {.declared = declared::TestFilePlayer,
     .exercises = "engine file player of \"music.wav\" with a CaptureFilePlayer",
     .inputs = {ReadInPart(Recording("music.wav"), "it is heard for as long as the run goes on")},
     .outputs = {Text("sdk_log.txt")},
     .device = Device::kRender,
     .runsOn = 10},
    {.declared = declared::TestAudioRecorder,
     .exercises = "engine recorder to \"audiorecorder.aac\"",
     .outputs = {{.name = "audiorecorder.aac", .content = "AAC stream", .appended = true}},
     .lacking = NeedsFamily<kAudioCodecAAC>,
     .device = Device::kCapture,
     .neverReturns = true},
    {.declared = declared::TestAudioSaver,
     .exercises = "engine file player and saver: \"gangqin.wav\", \"saver.aac\", \"gangqin2.wav\"",
     .inputs = {ReadInPart(Recording("gangqin.wav"), kPlayed),
                ReadInPart(Recording("gangqin2.wav"), kPlayed)},
     .outputs = {Other("saver.aac", "AAC stream"), Text("sdk_log.txt")},
     .lacking = NeedsFamily<kAudioCodecAAC>,
     .device = Device::kBoth,
     .seconds = 10},
    {.declared = declared::TestSpeechMsg,
     .exercises =
         "ISpeechMsgPlayer with a SpeechMsgPlayerNotify; prints \"Play Done, totalTime = %d.\"",
     .device = Device::kRender,
     .seconds = 60},
    {.declared = declared::TestAudioChannel,
     .exercises = "IAudioChannel pack and play loop with the packer and player notifies",
     .outputs = {Other("pack.enc", "coded audio"), Text("sdk_log.txt")},
     .lacking = NeedsRawIdOfWord<0>,
     .fruitless = NoCodecOfWord<0>,
     .codecIds = CodecIds,
     .device = Device::kBoth,
     .seconds = 20},
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

}  // namespace

std::span<const CatalogueRow> MixingRows() { return kRows; }

}  // namespace harness
