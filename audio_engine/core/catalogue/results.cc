#include "catalogue/results.h"

namespace harness {

namespace {

using enum Better;
using enum Stands;
using enum Takes;

// Aec.

constexpr ResultLine kEchoDelayEst[] = {
    {"delay", "ms", kNone, kLogged, "TestEchoDelayEst: *, #"},
    {"frames", "frames", kNone, kLogged, "TestEchoDelayEst: #, *"}};

constexpr ResultLine kEchoDelayEstAndAec[] = {
    {"delay", "ms", kNone, kLogged, "TestEchoDelayEstAndAEC: *, #"},
    {"frames", "frames", kNone, kLogged, "TestEchoDelayEstAndAEC: #, *", kCount},
    {"time", "ms", kLower, kLogged, "#"}};

constexpr ResultLine kAec[] = {
    {"delay", "ms", kNone, kLogged, "TestAECProcess: *, #"},
    {"frames", "frames", kNone, kLogged, "TestAECProcess: #, *", kCount}};

// The engine's own number for what it hears of the echo is a state, and no measure.
constexpr ResultLine kMobileAec[] = {
    {"delay", "ms", kNone, kLogged, "TestZUAECProcess: *, *, #"},
    {"echo_state", "1", kNone, kLogged, "TestZUAECProcess: *, #, *"},
    {"frames", "frames", kNone, kLogged, "TestZUAECProcess: #, *, *", kCount}};

constexpr ResultLine kEchoDetection[] = {
    {"echo_detected", "1", kNone, kLogged, "residual echo detection: #"},
    {"blocks", "blocks", kNone, kPrinted, "number of frame: #"}};

constexpr ResultLine kRecord[] = {
    {"delay", "ms", kNone, kWritten, "* #", kLast, "delay.txt"},
    {"dropped", "samples", kLower, kWritten, "* Hz, * channels, # samples dropped", kLast,
     "log.txt"},
    {"echo_detected", "1", kNone, kWritten, "echo: ?", kLast, "log.txt"}};

// Enhancement.

constexpr ResultLine kAudioProcessing[] = {
    {"vad_voice", "%", kNone, kLogged, "Vad result: #, *, *", kShare},
    {"vad_passive", "%", kNone, kLogged, "Vad result: *, #, *", kShare},
    {"vad_no_voice", "%", kNone, kLogged, "Vad result: *, *, #", kShare}};

// Codecs.

constexpr ResultLine kStreamToAac[] = {
    {"aac_bytes", "bytes", kNone, kLogged, "TransZUStreamToAAC successfully write :#"}};

constexpr ResultLine kEldCodec[] = {{"encoder_size", "bytes", kNone, kPrinted, "encoderSize = #"}};

constexpr ResultLine kEncode[] = {{"encode_time", "ms", kLower, kLogged, "encode elapse time: #."}};

constexpr ResultLine kDecode[] = {{"decode_time", "ms", kLower, kLogged, "decode elapse time: #."}};

constexpr ResultLine kNewEncode[] = {
    {"encoder_init", "1", kNone, kLogged, "Tavik Create silk encoder success #."}};

constexpr ResultLine kNewDecode[] = {
    {"decoder_init", "1", kNone, kLogged, "Tavik call aac decoder Init #"}};

// A chain that is gone through twice takes the sum of both times.
constexpr ResultLine kCodecChain[] = {
    {"encode_time", "ms", kLower, kLogged, "encode elapse time: #.", kSum},
    {"decode_time", "ms", kLower, kLogged, "decode elapse time: #.", kSum},
    {"total_encode_time", "ms", kLower, kLogged, "total elapse time:# *.", kSum},
    {"total_time", "ms", kLower, kLogged, "total elapse time:* #.", kSum}};

constexpr ResultLine kAacCase[] = {
    {"total_encode_time", "ms", kLower, kLogged, "total elapse time:# *."},
    {"total_time", "ms", kLower, kLogged, "total elapse time:* #."},
    {"encoder_init", "1", kNone, kLogged, "Tavik Create silk encoder success #."},
    {"decoder_init", "1", kNone, kLogged, "Tavik call aac decoder Init #"}};

// Effects.

constexpr ResultLine kTempoByLibrary[] = {{"tempo", "BPM", kNone, kPrinted, "bpm=#"}};

constexpr ResultLine kBeats[] = {
    {"tempo", "BPM", kNone, kWritten, "bpm = #, power = *, time = *", kMedian, "BeatTrack.txt"},
    {"beats", "beats", kNone, kWritten, "bpm = #, power = *, time = *", kCount, "BeatTrack.txt"},
    {"beat_power", "1", kNone, kWritten, "bpm = *, power = #, time = *", kMean, "BeatTrack.txt"},
    {"starts", "times", kNone, kWritten, "Notify Start, time = #", kCount, "BeatTrack.txt"},
    {"answers", "blocks", kNone, kPrinted, "TestBeatTrack: res = #.", kCount}};

constexpr ResultLine kVoice[] = {
    {"input_rate", "Hz", kNone, kPrinted, "TestInFile Fs = #, ch = *"},
    {"input_channels", "channels", kNone, kPrinted, "TestInFile Fs = *, ch = #"},
    {"blocks", "blocks", kNone, kPrinted, "notSame = *, total = #"},
    {"unequal_blocks", "blocks", kLower, kPrinted, "notSame = #, total = *"}};

constexpr ResultLine kInputFormat[] = {
    {"input_rate", "Hz", kNone, kPrinted, "TestInFile Fs = #, ch = *"},
    {"input_channels", "channels", kNone, kPrinted, "TestInFile Fs = *, ch = #"}};

constexpr ResultLine kAccelerate[] = {
    {"time", "ms", kLower, kLogged, "TestAudioAccelerate: #"},
    {"switched_on", "times", kNone, kLogged, "TestAudioAccelerate1 enable: *, #", kCount},
    {"switched_off", "times", kNone, kLogged, "TestAudioAccelerate disable: *, #", kCount}};

constexpr ResultLine kSpeed[] = {
    {"errors", "blocks", kLower, kPrinted, "error in AccelerateSoundProcess, #", kCount}};

// Mixing.

constexpr ResultLine kSpeechMsg[] = {
    {"message_time", "ms", kNone, kPrinted, "Play Done, totalTime = #."}};

struct LinesOfRoutine {
  std::string_view routine;
  std::span<const ResultLine> lines;
};

constexpr LinesOfRoutine kLines[] = {{"TestEchoDelayEst", kEchoDelayEst},
                                     {"TestEchoDelayEstAndAEC", kEchoDelayEstAndAec},
                                     {"TestAECProcess", kAec},
                                     {"TestTemp", kMobileAec},
                                     {"TestAECNsNoizeus", kMobileAec},
                                     {"TestZUAECProcess", kMobileAec},
                                     {"TestEchoDetection", kEchoDetection},
                                     {"TestRecord", kRecord},
                                     {"TestZUAudioProcessing", kAudioProcessing},
                                     {"TestZUStreamToAAC", kStreamToAac},
                                     {"TestAACStreamToAAC", kStreamToAac},
                                     {"TestZUEldCodec", kEldCodec},
                                     {"TestZUEncode", kEncode},
                                     {"TestZUDecode", kDecode},
                                     {"newTestZUEncode", kNewEncode},
                                     {"newTestZUDecode", kNewDecode},
                                     {"TestZUCodecNew", kCodecChain},
                                     {"TestMockVADMos", kCodecChain},
                                     {"calAACMos", kAacCase},
                                     {"TestSoundTouchBpm", kTempoByLibrary},
                                     {"TestBeatTrack", kBeats},
                                     {"TestVoiceBeautify", kVoice},
                                     {"TestVoiceChangerEx", kVoice},
                                     {"TestMdrc", kInputFormat},
                                     {"TestAudioMusicDetector", kInputFormat},
                                     {"TestAudioAccelerate", kAccelerate},
                                     {"AccelerateTest", kSpeed},
                                     {"StretchTest", kSpeed},
                                     {"TestSpeechMsg", kSpeechMsg}};

}  // namespace

std::span<const ResultLine> ResultLines(std::string_view routine) {
  for (const LinesOfRoutine& each : kLines) {
    if (each.routine == routine) return each.lines;
  }
  return {};
}

}  // namespace harness
