#include "harness/catalogue/catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <string>

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const CatalogueRow& Row(std::string_view routine) {
  const auto rows = Catalogue();
  return *std::find_if(rows.begin(), rows.end(),
                       [routine](const CatalogueRow& row) { return row.routine == routine; });
}

size_t ParameterCount(const CatalogueRow& row) {
  if (row.parameters.empty()) return 0;
  return 1 + static_cast<size_t>(std::count(row.parameters.begin(), row.parameters.end(), ','));
}

}  // namespace

TEST(Catalogue, HoldsEveryRoutineOnce) {
  std::vector<std::string_view> routines;
  for (const CatalogueRow& row : Catalogue()) routines.push_back(row.routine);
  std::sort(routines.begin(), routines.end());

  EXPECT_THAT(routines, ElementsAreArray({"AccelerateTest",
                                          "ConvertToFloatForWebrtc",
                                          "ConvertToShortForWebrtc",
                                          "DebugLogFunction",
                                          "GetCodecFrameLength",
                                          "MeasureAverageSNR",
                                          "MeasureSpeechSNR",
                                          "PrintSdkLog",
                                          "ReadChunk",
                                          "ReadPCMFromFileToMix",
                                          "RunTestCase",
                                          "StretchTest",
                                          "TestAACStreamToAAC",
                                          "TestAECNsNoizeus",
                                          "TestAECProcess",
                                          "TestAGCProcess",
                                          "TestAecDenoise",
                                          "TestAecDenoiseInternal",
                                          "TestAecDenoiseNOIZEUS",
                                          "TestAudioAccelerate",
                                          "TestAudioChannel",
                                          "TestAudioEffectModule",
                                          "TestAudioEncode",
                                          "TestAudioMixer",
                                          "TestAudioMusicDetector",
                                          "TestAudioRecorder",
                                          "TestAudioResamplerEx",
                                          "TestAudioSaver",
                                          "TestBeatTrack",
                                          "TestDecodeFile",
                                          "TestDenoiseProcess",
                                          "TestDenoiseProcessNoizeus",
                                          "TestDrc",
                                          "TestEchoDelayEst",
                                          "TestEchoDelayEstAndAEC",
                                          "TestEchoDetection",
                                          "TestEncodeFile",
                                          "TestEqReverb",
                                          "TestFilePlayer",
                                          "TestHPFProcess",
                                          "TestHRTF",
                                          "TestHardwareAec",
                                          "TestIIREq",
                                          "TestKaraokeFileMixer",
                                          "TestKaraokeRecorder",
                                          "TestMdrc",
                                          "TestMeasureVAD",
                                          "TestMockVADMos",
                                          "TestNoizeus",
                                          "TestNoizeusEx",
                                          "TestPushPcm",
                                          "TestRateChanger",
                                          "TestRecord",
                                          "TestRecordMixer",
                                          "TestReverb",
                                          "TestReverbPreset",
                                          "TestSilkMos",
                                          "TestSilkPackerOut",
                                          "TestSoftAec",
                                          "TestSoundTouch",
                                          "TestSoundTouchBpm",
                                          "TestSpeechMsg",
                                          "TestSpeexAgc",
                                          "TestSpeexConverter",
                                          "TestTemp",
                                          "TestVAD",
                                          "TestVADCodecMosByVADResult",
                                          "TestVADProcess",
                                          "TestVADProcessRefined",
                                          "TestVadResult",
                                          "TestVoiceBeautify",
                                          "TestVoiceChangerEx",
                                          "TestWebrtcAgc",
                                          "TestZUAECNSProcess",
                                          "TestZUAECProcess",
                                          "TestZUAec",
                                          "TestZUAudioProcessing",
                                          "TestZUAudioProcessor",
                                          "TestZUCodecNew",
                                          "TestZUDecode",
                                          "TestZUEAACCodec",
                                          "TestZUEldCodec",
                                          "TestZUEncode",
                                          "TestZUStreamToAAC",
                                          "calAACMos",
                                          "decoderFromRawCodecId",
                                          "encoderFromRawCodecId",
                                          "newTestZUDecode",
                                          "newTestZUEncode"}));
}

TEST(Catalogue, SaysWhatEachRoutineExercises) {
  for (const CatalogueRow& row : Catalogue()) {
    EXPECT_NE(row.exercises, "") << row.routine;
    EXPECT_NE(row.result, "") << row.routine;
  }
}

TEST(Catalogue, CountsTheRoutinesOfEachGroup) {
  std::map<Group, int> tests;
  std::map<Group, int> helpers;
  for (const CatalogueRow& row : Catalogue()) ++(row.helper ? helpers : tests)[row.group];

  EXPECT_EQ(tests, (std::map<Group, int>{{Group::kHarness, 2},
                                         {Group::kEcho, 15},
                                         {Group::kEnhancement, 14},
                                         {Group::kCodec, 17},
                                         {Group::kEffects, 20},
                                         {Group::kMixing, 10}}));
  EXPECT_EQ(helpers, (std::map<Group, int>{
                         {Group::kHarness, 6}, {Group::kEnhancement, 2}, {Group::kCodec, 3}}));
}

TEST(Catalogue, RunsWhatIsBuiltAndNoHelper) {
  for (const CatalogueRow& row : Catalogue()) {
    EXPECT_EQ(row.run != nullptr, row.built && !row.helper) << row.routine;
  }
}

TEST(Catalogue, DeclaresAsManyParametersAsARoutineTakes) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.run == nullptr) continue;
    const size_t count = ParameterCount(row);
    const std::vector<std::string_view> words(count + 1, "1");
    EXPECT_TRUE(row.run(Ask::kWhetherArgumentsFit, std::span(words).first(count))) << row.routine;
    EXPECT_FALSE(row.run(Ask::kWhetherArgumentsFit, words)) << row.routine;
  }
}

TEST(Catalogue, NamesTheFilesOfTheSelectedTest) {
  for (const char* routine : {"RunTestCase", "TestHRTF"}) {
    const CatalogueRow& row = Row(routine);
    ASSERT_THAT(row.inputs, SizeIs(1));
    EXPECT_EQ(row.inputs[0].name, "/sdcard/ZUAudioDemo/44100_2.pcm");
    EXPECT_EQ(row.inputs[0].encoding, Encoding::kPcm16);
    EXPECT_EQ(row.inputs[0].rate, 44100);
    EXPECT_EQ(row.inputs[0].channels, 2);
    EXPECT_EQ(row.inputs[0].blockBytes, 441 * 2 * 2);
    ASSERT_THAT(row.outputs, SizeIs(1));
    EXPECT_EQ(row.outputs[0].name, "/sdcard/ZUAudioDemo/44100_2_out_902.pcm");
    EXPECT_EQ(row.outputs[0].encoding, Encoding::kFloat32);
    EXPECT_EQ(row.outputs[0].rate, 44100);
    EXPECT_EQ(row.outputs[0].channels, 2);
  }
  EXPECT_THAT(Row("TestSilkMos").inputs, IsEmpty());
  EXPECT_THAT(Row("TestSilkMos").outputs, IsEmpty());
}

TEST(Catalogue, KeepsTheDeclaredNamesWithTheirSlips) {
  EXPECT_EQ(Row("TestReverb").parameters,
            "const char* pSrcFileName, const char* pDstFileName, int preset, int sampleRate, "
            "int channles");
  EXPECT_EQ(Row("TestZUAec").parameters,
            "const char* inNearFile, const char* inFarFile, const char* outNearFile, "
            "bool softwareAEC");
}
