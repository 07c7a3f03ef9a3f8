// The files of every routine, written apart from the rows.

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Container;
using harness::FileUse;
using harness::SampleType;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

std::string Number(int number) { return std::to_string(number); }

std::string Format(int rate, int channels) {
  return " " + (rate > 0 ? Number(rate) : "any") + "x" + (channels > 0 ? Number(channels) : "any");
}

// What is declared of a WAVE: the format that is right, what is taken for a header, what comes of
// another format.
std::string WaveFacts(const FileUse& use) {
  std::string text = " wave";
  if (use.rate > 0 || use.channels > 0) text += Format(use.rate, use.channels);
  if (use.alsoRight.channels > 0)
    text += " or" + Format(use.alsoRight.rate, use.alsoRight.channels);
  if (use.leastRate > 0) text += " from " + Number(use.leastRate);
  if (!use.formatOf.empty()) text += " as " + use.formatOf;
  if (use.otherFormat == harness::OtherFormat::kAborts) text += " else abort";
  if (use.otherFormat == harness::OtherFormat::kNoOutput) text += " else nothing";
  if (use.header == harness::WaveHeader::kSkipped) text += " skip 44";
  if (use.header == harness::WaveHeader::kCopied) text += " copy 44";
  if (use.header == harness::WaveHeader::kSamples) text += " from byte 0";
  if (use.headerlessToo) text += " or headerless";
  if (use.blockMs > 0) text += " " + Number(use.blockMs) + " ms";
  if (use.blockMs > 0 && use.mostBlockSamples != 8192) text += " any size";
  return text;
}

// What is declared of a file but its name: " s16 16000x1 block 400".
std::string Facts(const FileUse& use) {
  std::string text;
  if (use.container == Container::kWave) text += WaveFacts(use);
  if (use.container == Container::kRecording) text += " recording";
  if (use.container == Container::kHeaderless) {
    text += use.samples == SampleType::kPcm16 ? " s16 " : " f32 ";
    text += Number(use.rate) + "x" + Number(use.channels);
  }
  if (use.blockBytes > 0) text += " block " + Number(use.blockBytes);
  if (use.optional) text += " optional";
  if (use.mayBeEmpty) text += " may be empty";
  if (use.beside) text += " beside";
  if (use.foreignHeader) text += " foreign header";
  if (!use.content.empty()) text += " " + use.content;
  if (use.appended) text += " appended";
  if (!use.remark.empty()) text += " (" + use.remark + ")";
  return text;
}

// A text for each file, and one for each list in place of its files: pattern, number, what is
// declared.
std::vector<std::string> Texts(const std::vector<FileUse>& uses) {
  std::map<std::string, int> counts;
  for (const FileUse& use : uses) ++counts[use.pattern];
  std::vector<std::string> texts;
  for (const FileUse& use : uses) {
    const std::string count = use.pattern.empty() ? "" : " " + Number(counts[use.pattern]) + "x";
    std::string text = (use.pattern.empty() ? use.name : use.pattern) + count + Facts(use);
    if (use.pattern.empty() || texts.empty() || texts.back() != text) texts.push_back(text);
  }
  return texts;
}

struct RowFiles {
  const char* routine;
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
};

constexpr const char* kUnwritten =
    "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_mcra2.pcm 960x s16 8000x1 block 160 optional "
    "(nothing in the bench writes these)";

const RowFiles kRows[] = {
    {"RunTestCase",
     {"/sdcard/ZUAudioDemo/44100_2.pcm s16 44100x2 block 1764"},
     {"/sdcard/ZUAudioDemo/44100_2_out_902.pcm f32 44100x2"}},
    {"TestEchoDelayEst",
     {"{pFarendFileName} wave 16000x1 skip 44 block 320",
      "{pNearendFileName} wave 16000x1 skip 44 block 320"},
     {}},
    {"TestEchoDelayEstAndAEC",
     {"{pFarendFileName} wave 16000x1 skip 44 block 320",
      "{pNearendFileName} wave 16000x1 copy 44 block 320"},
     {"{pOutFileName} wave foreign header"}},
    {"TestTemp", {"wrpcmin.pcm s16 8000x1 block 160"}, {"NSout.pcm s16 8000x1"}},
    {"TestAECNsNoizeus",
     {"NOIZEUS/in/<noise>/<level>dB/sp<sentence>_<noise>_sn<level>.pcm 960x s16 8000x1 block 160"},
     {"NOIZEUS/out/sp<sentence>_<noise>_sn<level>_aec.pcm 960x s16 8000x1 block 160"}},
    {"TestZUAECProcess",
     {"{pFarendFileName} wave 16000x1 from byte 0 or headerless block 320 optional",
      "{pNearendFileName} wave 16000x1 copy 44 block 320"},
     {"{pOutFileName} wave foreign header"}},
    {"TestAECProcess",
     {"{pFarendFileName} s16 16000x1 block 320", "{pNearendFileName} s16 16000x1 block 320"},
     {"{pOutFileName} s16 16000x1"}},
    {"TestZUAec",
     {"{inNearFile} wave 10 ms", "{inFarFile} wave as {inNearFile} else nothing 10 ms"},
     {"{outNearFile} wave"}},
    {"TestAecDenoiseInternal", {"{in} wave 10 ms"}, {"{out} wave 10 ms"}},
    {"TestAecDenoiseNOIZEUS",
     {"NOIZEUS/in/<noise>/<level>dB/sp<sentence>_<noise>_sn<level>.wav 960x wave 10 ms"},
     {"NOIZEUS/out/rev3.2.50/sp<sentence>_<noise>_sn<level>_denoise.wav 960x wave 10 ms"}},
    {"TestAecDenoise",
     {"in/<recording>.wav 10x wave 10 ms"},
     {"out/rev3.2.250/<recording>_out_rev3.2.250.wav 10x wave 10 ms"}},
    {"TestHardwareAec", {"noise_in.wav wave 32000x1 10 ms"}, {"out.wav wave"}},
    {"TestSoftAec",
     {"music_delay/findcap.wav wave 16000x1 10 ms",
      "music_delay/findreceive.wav wave 16000x1 10 ms"},
     {"music_delay/out.wav wave", "music_delay/echo_metrics.txt may be empty text"}},
    {"TestEchoDetection",
     {"C:\\aecfiles\\farend.wav wave 16000x1 from byte 0 block 2",
      "C:\\aecfiles\\nearend.wav wave 16000x1 from byte 0 block 2"},
     {}},
    {"TestRecord",
     {"F:\\sample\\test.pcm s16 16000x1 block 400 optional",
      "F:\\sample\\test2.pcm s16 16000x1 optional"},
     {"far.wav wave", "near.wav wave may be empty", "out.wav wave", "delay.txt may be empty text",
      "log.txt text"}},
    {"TestNoizeus",
     {"NOIZEUS/in/clean/sp<sentence>.pcm 30x s16 8000x1 block 160 beside",
      "NOIZEUS/in/<noise>/<level>dB/sp<sentence>_<noise>_sn<level>.pcm 960x s16 8000x1 block 160",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_aec.pcm 960x s16 8000x1 block 160",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_denoise_light.pcm 960x s16 8000x1 block 160",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_denoise.pcm 960x s16 8000x1 block 160",
      kUnwritten},
     {"NOIZEUS/out/result_avg_snr_aec_<noise>.txt 8x text",
      "NOIZEUS/out/result_speech_snr_aec_<noise>.txt 8x text",
      "NOIZEUS/out/result_avg_snr_denoise_light_<noise>.txt 8x text",
      "NOIZEUS/out/result_speech_snr_denoise_light_<noise>.txt 8x text",
      "NOIZEUS/out/result_avg_snr_denoise_<noise>.txt 8x text",
      "NOIZEUS/out/result_speech_snr_denoise_<noise>.txt 8x text",
      "NOIZEUS/out/result_avg_snr_mcra2_<noise>.txt 8x text",
      "NOIZEUS/out/result_speech_snr_mcra2_<noise>.txt 8x text",
      "NOIZEUS/out/result_avg_snr_off_<noise>.txt 8x text",
      "NOIZEUS/out/result_speech_snr_off_<noise>.txt 8x text"}},
    {"TestAGCProcess",
     {"{pSrcFileName} wave 16000x1 copy 44 block 320"},
     {"{pDstFileName} wave foreign header"}},
    {"TestVADProcess",
     {"{pSrcFileName} wave 16000x1 copy 44 block 320 optional"},
     {"{pDstFileName} wave foreign header", "{pResultFileName} wave foreign header"}},
    {"TestNoizeusEx",
     {"NOIZEUS/in/clean/sp<sentence>.pcm 30x s16 8000x1 block 160 beside",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_<algorithm>.pcm 960x s16 8000x1 block 160 (for "
      "\"off\" the noisy sentences of NOIZEUS/in instead)",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_<algorithm>.pcm 960x s16 8000x1 block 160"},
     {"NOIZEUS/out/result_<measure>_<algorithm>_<noise>.txt 8x text"}},
    {"TestZUAudioProcessing",
     {"{pFarendFileName} wave 16000x1 copy 44 block 320",
      "{pNearendFileName} wave 16000x1 skip 44 block 320"},
     {"{pOutFileName} wave foreign header"}},
    {"TestHPFProcess", {"{pSrcFileName} wave 10 ms"}, {"{pDstFileName} wave 10 ms"}},
    {"TestVADProcessRefined", {"{in} wave anyx1 else abort 10 ms any size"}, {"{out} wave"}},
    {"TestVadResult",
     {"swb_ref_16kHz.wav wave 10 ms"},
     {"vad_out.wav wave 10 ms", "vad_result.wav wave 10 ms"}},
    {"TestVAD",
     {"F:/Stream/vad/input/vad_input_description.txt optional text"},
     {"F:/Stream/vad/output/report_{version}.txt text"}},
    {"TestSpeexAgc", {"music.wav wave 10 ms"}, {"agc_out.wav wave 10 ms"}},
    {"TestWebrtcAgc", {"niannujiao_44100_1.wav wave 10 ms"}, {"agc_out.wav wave 10 ms"}},
    {"TestDenoiseProcessNoizeus",
     {"NOIZEUS/in/<noise>/<level>dB/sp<sentence>_<noise>_sn<level>.pcm 960x s16 8000x1 block 160"},
     {"NOIZEUS/out/sp<sentence>_<noise>_sn<level>_denoise.pcm 960x s16 8000x1 block 160",
      "NOIZEUS/out/sp<sentence>_<noise>_sn<level>_denoise_light.pcm 960x s16 8000x1 block 160"}},
    {"TestDenoiseProcess", {"ns_in.wav wave 10 ms"}, {"ns_out.wav wave 10 ms"}},
    {"TestZUStreamToAAC", {"packer.48k.aac optional coded audio"}, {"48k.aac AAC stream"}},
    {"TestAudioEncode",
     {"audio_test.pcm s16 44100x2 optional"},
     {"out.enc coded audio", "dec.pcm s16 44100x2"}},
    {"TestZUEAACCodec",
     {"F:\\44100_2_new1.wav wave 44100x2 from byte 0 block 8192"},
     {"F:\\44100_2_out.aac AAC stream", "F:\\44100_2_out.pcm s16 44100x2"}},
    {"TestZUEldCodec", {"yedegangqinqu_Fs32000_Ch1.pcm s16 32000x1"}, {"eld_out.aac coded audio"}},
    {"TestEncodeFile",
     {"{pSrcFileName} wave 44100x2 or 16000x1 else nothing skip 44"},
     {"{pDstFileName} coded audio"}},
    {"TestDecodeFile", {"{pSrcFileName} coded audio"}, {"{pDstFileName} headerless samples"}},
    {"TestSilkPackerOut", {"packer.out optional coded audio"}, {"packer.pcm s16 16000x1"}},
    {"TestAACStreamToAAC", {"packer.48k.aac optional coded audio"}, {"48k.aac AAC stream"}},
    {"TestVADCodecMosByVADResult",
     {"{pSrcFileName} wave as the codec block 2"},
     {"{pDstFileName} wave", "{pVadResultFile} wave"}},
    {"TestZUAudioProcessor", {"player.wav wave 44100x2 block 8192"}, {"player.aac AAC stream"}},
    {"TestZUEncode",
     {"{wavInFileName} wave as the codec block 2"},
     {"{encodedFileName} coded audio"}},
    {"TestZUDecode", {"{encodedFileName} coded audio"}, {"{decodedWavFileName} wave"}},
    {"newTestZUEncode",
     {"{wavInFileName} wave as the codec block 2"},
     {"{encodedFileName} coded audio"}},
    {"newTestZUDecode", {"{encodedFileName} coded audio"}, {"{decodedWavFileName} wave"}},
    {"TestZUCodecNew",
     {"{wavInFileName} wave as the codec block 2"},
     {"{wavOutFileName}.enc coded audio", "{wavOutFileName}.dec.wav wave",
      "{wavOutFileName} wave"}},
    {"TestMockVADMos",
     {"{refFile} wave 10 ms",
      "{refFile}.preproc.wav wave 16000x1 copy 44 block 320 optional (nothing in the bench writes "
      "it)"},
     {"{refFile}.resample.wav wave", "{refFile}.codec.wav.enc coded audio",
      "{refFile}.codec.wav.dec.wav wave", "{refFile}.codec.wav wave",
      "{refFile}.vad.wav wave foreign header", "{refFile}.vadresult.wav wave foreign header",
      "{refFile}.vadCodec.wav.enc coded audio", "{refFile}.vadCodec.wav.dec.wav wave",
      "{refFile}.vadCodec.wav wave"}},
    {"calAACMos",
     {"{wavInFileName} wave 10 ms"},
     {"{rate}_{channels}_{bitRate}.res.wav wave 10 ms",
      "{rate}_{channels}_{bitRate}.ref.wav wave 10 ms",
      "{rate}_{channels}_{bitRate}.enc.wav coded audio",
      "{rate}_{channels}_{bitRate}.dec.wav wave"}},
    {"TestIIREq",
     {"c:\\44100_2_music.wav wave 44100x2 copy 44 block 1764"},
     {"c:\\44100_2_music_eq.wav wave foreign header"}},
    {"TestReverb",
     {"{pSrcFileName} wave as the arguments copy 44"},
     {"{pDstFileName} wave foreign header"}},
    {"TestReverbPreset",
     {"e:\\lumo.wav wave 44100x1 copy 44 block 882"},
     {"e:\\reverb\\lumo_reverb_*.wav 14x wave foreign header"}},
    {"TestAudioAccelerate",
     {"F:\\44100_2_new1.wav wave 44100x2 copy 44 block 4096 optional"},
     {"F:\\44100_2_new1_out.wav wave foreign header"}},
    {"TestHRTF",
     {"/sdcard/ZUAudioDemo/44100_2.pcm s16 44100x2 block 1764"},
     {"/sdcard/ZUAudioDemo/44100_2_out_902.pcm f32 44100x2"}},
    {"TestAudioMusicDetector", {"music.wav wave 10 ms block 2"}, {"music_det.wav wave"}},
    {"TestMdrc", {"voice.wav wave 10 ms"}, {"mdrc.wav wave 10 ms"}},
    {"TestVoiceBeautify", {"f:\\4.wav wave 10 ms"}, {"f:\\4_out6.wav wave 10 ms"}},
    {"TestVoiceChangerEx", {"voice.wav wave 10 ms"}, {"voice_changer_out.wav wave 10 ms"}},
    {"TestSpeexConverter",
     {"niannujiao_44100_2.wav wave 10 ms optional"},
     {"resampler.wav wave 10 ms"}},
    {"TestAudioResamplerEx", {"{inFile} wave 10 ms optional"}, {"{outFile} wave 10 ms"}},
    {"TestDrc", {"music.wav wave 10 ms"}, {"drc_out.wav wave 10 ms"}},
    {"TestBeatTrack",
     {"yedegangqinqu_Fs44100_Ch1.wav wave 10 ms"},
     {"BeatTrack.txt may be empty text"}},
    {"AccelerateTest", {"whenold_8000_1.wav wave 30 ms"}, {"out.wav wave"}},
    {"StretchTest", {"whenold_8000_1.wav wave 30 ms"}, {"out.wav wave"}},
    {"TestEqReverb",
     {"voice_record.wav wave anyx1 or anyx2 else nothing 10 ms"},
     {"eqreverb.wav wave 10 ms"}},
    {"TestAudioEffectModule", {"input.wav wave 10 ms"}, {"effect_out.wav wave 10 ms"}},
    {"TestRateChanger", {"test.wav wave 10 ms"}, {"rate.wav wave 10 ms"}},
    {"TestSoundTouchBpm", {"yedegangqinqu_Fs44100_Ch1.wav wave from 8000 else abort 10 ms"}, {}},
    {"TestSoundTouch", {"input.wav wave 44100x1 10 ms"}, {"out.wav wave"}},
    {"TestAudioMixer",
     {"c:\\5.wav wave 16000x1 skip 44 block 320"},
     {"c:\\outmix.pcm s16 16000x1"}},
    {"TestRecordMixer",
     {"record_acc.wav wave 10 ms any size",
      "record_voice.wav wave as record_acc.wav 10 ms any size"},
     {"record_out.wav wave 10 ms"}},
    {"TestKaraokeFileMixer",
     {"voice_record.wav recording", "music.wav recording"},
     {"output.aac AAC stream"}},
    {"TestKaraokeRecorder",
     {"/sdcard/dangni_mix.wav recording optional", "/sdcard/dangni_acc.wav recording optional",
      "/sdcard/dangni_line_info.txt optional text",
      "/sdcard/dangni_score_time_range.txt optional text"},
     {"/sdcard/voice_record.wav wave"}},
    {"TestFilePlayer", {"music.wav recording"}, {"sdk_log.txt text"}},
    {"TestAudioRecorder", {}, {"audiorecorder.aac AAC stream appended"}},
    {"TestAudioSaver",
     {"gangqin.wav recording", "gangqin2.wav recording"},
     {"saver.aac AAC stream", "sdk_log.txt text"}},
    {"TestAudioChannel", {}, {"pack.enc coded audio", "sdk_log.txt text"}},
    {"TestPushPcm",
     {"Fs44100_Ch2.pcm s16 44100x2 block 3528"},
     {"out.pcm s16 44100x2 may be empty"}},
};

std::vector<std::string> Names(const std::vector<FileUse>& uses) {
  std::vector<std::string> names;
  for (const FileUse& use : uses) names.push_back(use.name);
  return names;
}

const CatalogueRow& Row(std::string_view routine) {
  const auto rows = Catalogue();
  return *std::find_if(rows.begin(), rows.end(), [routine](const CatalogueRow& row) {
    return row.declared.words.name == routine;
  });
}

}  // namespace

TEST(CatalogueFiles, DeclareWhatEachRoutineReadsAndWrites) {
  auto expected = std::begin(kRows);
  for (const CatalogueRow& row : Catalogue()) {
    if (row.inputs.empty() && row.outputs.empty()) continue;
    ASSERT_NE(expected, std::end(kRows));
    EXPECT_EQ(row.declared.words.name, expected->routine);
    EXPECT_THAT(Texts(row.inputs), ElementsAreArray(expected->inputs)) << expected->routine;
    EXPECT_THAT(Texts(row.outputs), ElementsAreArray(expected->outputs)) << expected->routine;
    ++expected;
  }
  EXPECT_EQ(expected, std::end(kRows));
}

TEST(CatalogueFiles, NameEachFileOfALongListOnce) {
  const std::vector<std::string> in = Names(Row("TestAecDenoiseNOIZEUS").inputs);
  const std::vector<std::string> out = Names(Row("TestAecDenoiseNOIZEUS").outputs);
  EXPECT_EQ(std::set<std::string>(in.begin(), in.end()).size(), 960U);
  EXPECT_EQ(in[31], "NOIZEUS/in/airport/5dB/sp02_airport_sn5.wav");
  EXPECT_EQ(std::set<std::string>(out.begin(), out.end()).size(), 960U);
  EXPECT_EQ(out[31], "NOIZEUS/out/rev3.2.50/sp02_airport_sn5_denoise.wav");
  EXPECT_EQ(Names(Row("TestAECNsNoizeus").outputs)[31], "NOIZEUS/out/sp02_airport_sn5_aec.pcm");
  EXPECT_EQ(Names(Row("TestNoizeus").inputs)[1], "NOIZEUS/in/clean/sp02.pcm");
  EXPECT_EQ(Names(Row("TestReverbPreset").outputs)[13], "e:\\reverb\\lumo_reverb_13.wav");
  EXPECT_EQ(Names(Row("TestNoizeus").outputs)[1], "NOIZEUS/out/result_avg_snr_aec_babble.txt");
}

TEST(CatalogueFiles, NameTheTenRecordings) {
  EXPECT_THAT(Names(Row("TestAecDenoise").inputs),
              ElementsAre("in/ns_in_32000.wav", "in/ns_step_32000.wav", "in/sp01_airport_sn5.wav",
                          "in/sp22_street_sn10.wav", "in/sp22_train_sn10.wav",
                          "in/sp22_train_sn5.wav", "in/mirela_ns_off.wav", "in/wrpcmin32000.wav",
                          "in/wrpcmin_ka.wav", "in/after_aec.wav"));
  EXPECT_EQ(Names(Row("TestAecDenoise").outputs)[8],
            "out/rev3.2.250/wrpcmin_ka_out_rev3.2.250.wav");
}

TEST(CatalogueFiles, FollowFromTheFormatOfTheCodec) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) {
    AudioStreamFormat format = {};
    format.iSampleRate = 1000 * id;
    format.iNumOfChannels = id + 1;
    return format;
  };
  const std::string_view words[] = {"in.wav", "out.wav", "7", "3", "4"};
  EXPECT_THAT(Names(Outputs(Row("calAACMos"), words)),
              ElementsAre("7000_8_{bitRate}.res.wav", "7000_8_{bitRate}.ref.wav",
                          "7000_8_{bitRate}.enc.wav", "7000_8_{bitRate}.dec.wav"));
}
