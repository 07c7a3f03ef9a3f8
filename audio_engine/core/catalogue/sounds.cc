#include "catalogue/sounds.h"

namespace harness {

namespace {

constexpr std::string_view kMarkers = "markers, not sound";

// What a canceller leaves is what is no echo, which may be nothing.
constexpr GuardOff kCancelled[] = {{"silent", "of what is echo alone nothing is left"},
                                   {"dropout", "echo alone may be silenced"},
                                   {"unchanged", "without a far end nothing is taken away"},
                                   {"level", "the echo is taken out"}};

constexpr GuardOff kGainControlled[] = {{"level", "the gain is what is changed"}};

constexpr GuardOff kDenoised[] = {{"level", "the noise is taken out"}};

constexpr GuardOff kGated[] = {{"dropout", "what is no sound becomes silence"},
                               {"click", "the gate opens and closes in the middle of a wave"},
                               {"silent", "without any sound all becomes silence"},
                               {"unchanged", "all may be sound"}};

// Nothing to do where the form is the same already.
constexpr GuardOff kConverted[] = {{"unchanged", "there may be nothing to convert"}};

constexpr GuardOff kChanged[] = {
    {"length", "how much is left out or put in follows from the sound"}};

constexpr GuardOff kBoosted[] = {
    {"clipped", "its boosts may take loud music beyond full scale", true}};

constexpr GuardOff kMixedViews[] = {
    {"click", "what falls out one by one ends in the middle of a wave"},
    {"unchanged", "of a short recording one view is all there is"}};

constexpr GuardOff kSpatial[] = {{"level", "each ear hears what its direction leaves"}};

// What tells how well something is done.
constexpr std::string_view kCancellation[] = {"erle", "convergence", "near_sdr"};
constexpr std::string_view kSuppression[] = {"noise_reduction", "speech_retained", "delta_snr",
                                             "musical"};
constexpr std::string_view kCoding[] = {"codec_delay", "band_limit", "band_difference", "seg_snr",
                                        "lsd"};
constexpr std::string_view kLikeness[] = {"si_sdr"};

// Aec.
constexpr SoundUse kNearEnd[] = {{.input = "{pNearendFileName}",
                                  .off = kCancelled,
                                  .measures = kCancellation,
                                  .far = "{pFarendFileName}"}};
constexpr SoundUse kTemp[] = {{.input = "wrpcmin.pcm", .off = kDenoised, .measures = kSuppression}};
constexpr SoundUse kAecNoizeus[] = {{.input = ".pcm", .off = kDenoised, .measures = kSuppression}};
constexpr SoundUse kZuAec[] = {
    {.input = "{inNearFile}", .off = kCancelled, .measures = kCancellation, .far = "{inFarFile}"}};
constexpr SoundUse kDenoiseInternal[] = {
    {.input = "{in}", .off = kDenoised, .measures = kSuppression}};
constexpr SoundUse kListed[] = {{.input = ".wav", .off = kDenoised, .measures = kSuppression}};
constexpr SoundUse kHardwareAec[] = {{.input = "noise_in.wav", .off = kGainControlled}};
constexpr SoundUse kSoftAec[] = {{.input = "findcap.wav",
                                  .off = kCancelled,
                                  .measures = kCancellation,
                                  .far = "findreceive.wav"}};
constexpr SoundUse kRecord[] = {{.output = "far.wav", .input = "test2.pcm", .off = kConverted},
                                {.output = "out.wav", .input = "test.pcm", .off = kConverted},
                                {.output = "near.wav", .noSound = "nothing is recorded there"}};

// Enhancement.
constexpr SoundUse kAgc[] = {{.input = "{pSrcFileName}", .off = kGainControlled}};
constexpr SoundUse kVad[] = {
    {.output = "{pDstFileName}", .input = "{pSrcFileName}", .off = kGated},
    {.output = "{pResultFileName}", .noSound = kMarkers, .speechMarks = 0}};
constexpr SoundUse kHighPass[] = {{.input = "{pSrcFileName}"}};
// Beside the sound in the first channel.
constexpr SoundUse kVadRefined[] = {{.noSound = kMarkers, .speechMarks = 1}};
constexpr SoundUse kVadResult[] = {
    {.output = "vad_out.wav", .input = "swb_ref_16kHz.wav", .off = kGated},
    {.output = "vad_result.wav", .noSound = kMarkers, .speechMarks = 0}};
constexpr SoundUse kMusicAgc[] = {{.input = ".wav", .off = kGainControlled}};
constexpr SoundUse kDenoise[] = {
    {.input = "ns_in.wav", .off = kDenoised, .measures = kSuppression}};

// The header of the file is encoded as samples, too.
constexpr GuardOff kHeaderHeard[] = {{"click", "the header of the file is heard as samples"}};

// Codecs.
constexpr SoundUse kAudioEncode[] = {
    {.output = "dec.pcm", .input = "audio_test.pcm", .measures = kCoding, .faithful = true}};
constexpr SoundUse kEnhancedAac[] = {{.output = "44100_2_out.pcm",
                                      .input = "44100_2_new1.wav",
                                      .off = kHeaderHeard,
                                      .measures = kCoding,
                                      .faithful = true}};
constexpr SoundUse kFromStream[] = {{}};
constexpr SoundUse kGatedMos[] = {
    {.output = "{pDstFileName}", .input = "{pSrcFileName}", .off = kGated},
    {.output = "{pVadResultFile}", .noSound = kMarkers, .speechMarks = 0}};
constexpr SoundUse kChain[] = {{.input = "{wavInFileName}", .measures = kCoding, .faithful = true}};
constexpr SoundUse kMockVad[] = {
    {.output = ".resample.wav", .input = "{refFile}", .off = kConverted},
    {.output = ".vadresult.wav", .noSound = kMarkers, .speechMarks = 0},
    {.output = ".vad.wav", .input = ".preproc.wav", .off = kGated},
    {.output = ".vadCodec.wav", .input = ".preproc.wav", .off = kGated},
    {.output = ".vadCodec.wav.dec.wav", .input = ".preproc.wav", .off = kGated},
    {.input = ".preproc.wav"}};
constexpr SoundUse kAacCase[] = {
    {.output = ".dec.wav", .input = "{wavInFileName}", .measures = kCoding, .faithful = true},
    {.input = "{wavInFileName}", .off = kConverted}};

// Effects.
constexpr SoundUse kEqualizer[] = {{.input = ".wav", .off = kBoosted}};
constexpr SoundUse kReverb[] = {{.input = "{pSrcFileName}"}};
constexpr SoundUse kAccelerate[] = {{.input = ".wav", .comparable = false, .off = kChanged}};
constexpr SoundUse kHrtf[] = {{.input = "44100_2.pcm", .off = kSpatial}};
constexpr SoundUse kMusicDetector[] = {{.noSound = "samples beside markers, at a rate of its own"}};
constexpr SoundUse kFromWave[] = {{.input = ".wav"}};
constexpr SoundUse kPitched[] = {{.input = ".wav", .comparable = false}};
constexpr SoundUse kResampled[] = {
    {.input = "{inFile}", .off = kConverted, .measures = kLikeness, .faithful = true}};
constexpr SoundUse kResampledFile[] = {
    {.input = ".wav", .off = kConverted, .measures = kLikeness, .faithful = true}};

// Mixing.
constexpr SoundUse kBlockMixer[] = {{.input = ".wav", .off = kMixedViews}};
constexpr SoundUse kCompressed[] = {{.input = ".wav", .leastLevel = -24}};
constexpr SoundUse kSwept[] = {{.input = ".wav", .comparable = false, .off = kChanged}};
constexpr SoundUse kHalfTempo[] = {
    {.input = ".wav", .comparable = false, .lengthFactor = 2, .lengthTolerance = 1}};
constexpr SoundUse kRecordMixer[] = {{.input = "record_acc.wav"}};
constexpr SoundUse kKaraokeRecorder[] = {{}};
constexpr SoundUse kPushPcm[] = {{.input = ".pcm", .off = kConverted}};

struct SoundsOfRoutine {
  std::string_view routine;
  std::span<const SoundUse> sounds;
};

constexpr SoundsOfRoutine kSounds[] = {{"TestEchoDelayEstAndAEC", kNearEnd},
                                       {"TestTemp", kTemp},
                                       {"TestAECNsNoizeus", kAecNoizeus},
                                       {"TestZUAECProcess", kNearEnd},
                                       {"TestAECProcess", kNearEnd},
                                       {"TestZUAec", kZuAec},
                                       {"TestAecDenoiseInternal", kDenoiseInternal},
                                       {"TestAecDenoiseNOIZEUS", kListed},
                                       {"TestAecDenoise", kListed},
                                       {"TestHardwareAec", kHardwareAec},
                                       {"TestSoftAec", kSoftAec},
                                       {"TestRecord", kRecord},
                                       {"TestAGCProcess", kAgc},
                                       {"TestVADProcess", kVad},
                                       {"TestZUAudioProcessing", kNearEnd},
                                       {"TestHPFProcess", kHighPass},
                                       {"TestVADProcessRefined", kVadRefined},
                                       {"TestVadResult", kVadResult},
                                       {"TestSpeexAgc", kMusicAgc},
                                       {"TestWebrtcAgc", kMusicAgc},
                                       {"TestDenoiseProcessNoizeus", kAecNoizeus},
                                       {"TestDenoiseProcess", kDenoise},
                                       {"TestAudioEncode", kAudioEncode},
                                       {"TestZUEAACCodec", kEnhancedAac},
                                       {"TestSilkPackerOut", kFromStream},
                                       {"TestVADCodecMosByVADResult", kGatedMos},
                                       {"TestZUDecode", kFromStream},
                                       {"newTestZUDecode", kFromStream},
                                       {"TestZUCodecNew", kChain},
                                       {"TestMockVADMos", kMockVad},
                                       {"calAACMos", kAacCase},
                                       {"TestIIREq", kEqualizer},
                                       {"TestReverb", kReverb},
                                       {"TestReverbPreset", kFromWave},
                                       {"TestAudioAccelerate", kAccelerate},
                                       {"TestHRTF", kHrtf},
                                       {"RunTestCase", kHrtf},
                                       {"TestAudioMusicDetector", kMusicDetector},
                                       {"TestMdrc", kCompressed},
                                       {"TestVoiceBeautify", kFromWave},
                                       {"TestVoiceChangerEx", kPitched},
                                       {"TestSpeexConverter", kResampledFile},
                                       {"TestAudioResamplerEx", kResampled},
                                       {"TestDrc", kCompressed},
                                       {"AccelerateTest", kAccelerate},
                                       {"StretchTest", kAccelerate},
                                       {"TestEqReverb", kFromWave},
                                       {"TestAudioEffectModule", kFromWave},
                                       {"TestRateChanger", kSwept},
                                       {"TestSoundTouch", kHalfTempo},
                                       {"TestAudioMixer", kBlockMixer},
                                       {"TestRecordMixer", kRecordMixer},
                                       {"TestKaraokeRecorder", kKaraokeRecorder},
                                       {"TestPushPcm", kPushPcm}};

}  // namespace

std::span<const SoundUse> Sounds(std::string_view routine) {
  for (const SoundsOfRoutine& each : kSounds) {
    if (each.routine == routine) return each.sounds;
  }
  return {};
}

}  // namespace harness
