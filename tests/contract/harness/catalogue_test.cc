#include "catalogue/catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "catalogue_row_of.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"
#include "signatures.h"

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Container;
using harness::Group;
using harness::SampleType;
using testing::ContainerEq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string Signature(const harness::Words& words) {
  return std::string(words.result) + " " + std::string(words.name) + "(" +
         std::string(words.parameters) + ")";
}

// A word that fits a parameter of this type.
std::string_view FittingWord(std::string_view type) {
  if (type == "bool") return "true";
  if (type == "int*") return "none";
  if (type == "AudioLocalCodec::AudioCodecType") return "SILK_CODEC";
  return "1";  // A number, or a name.
}

bool Runs(const CatalogueRow& row) { return row.declared.run != nullptr; }

}  // namespace

TEST(Catalogue, HoldsEveryRoutineOnceWithItsSignature) {
  std::map<std::string, std::string> signatures;
  for (const CatalogueRow& row : Catalogue()) {
    const std::string name(row.declared.words.name);
    EXPECT_TRUE(signatures.emplace(name, Signature(row.declared.words)).second) << name;
  }
  std::vector<std::string> listed;
  for (const auto& [name, signature] : signatures) listed.push_back(signature);

  const std::vector<std::string> expected(std::begin(kSignatures), std::end(kSignatures));
  EXPECT_THAT(listed, ContainerEq(expected));
}

TEST(Catalogue, SaysWhatEachRoutineExercises) {
  for (const CatalogueRow& row : Catalogue()) EXPECT_NE(row.exercises, "");
}

TEST(Catalogue, CountsTheRoutinesOfEachGroup) {
  std::map<Group, int> tests;
  std::map<Group, int> helpers;
  for (const CatalogueRow& row : Catalogue()) ++(row.helper ? helpers : tests)[row.group];

  EXPECT_EQ(tests, (std::map<Group, int>{{Group::kHarness, 2},
                                         {Group::kAec, 15},
                                         {Group::kEnhancement, 14},
                                         {Group::kCodec, 17},
                                         {Group::kEffects, 20},
                                         {Group::kMixing, 10}}));
  EXPECT_EQ(helpers, (std::map<Group, int>{
                         {Group::kHarness, 6}, {Group::kEnhancement, 2}, {Group::kCodec, 3}}));
}

TEST(Catalogue, RunsWhatIsBuiltUnlessItIsOnlyCalled) {
  for (const CatalogueRow& row : Catalogue()) {
    const bool onlyCalled = row.helper || !row.calledBy.empty();
    EXPECT_EQ(Runs(row), !onlyCalled) << row.declared.words.name;
    EXPECT_EQ(row.declared.argumentFault != nullptr, Runs(row)) << row.declared.words.name;
  }
}

TEST(Catalogue, TakesOneFittingWordForEachParameter) {
  for (const CatalogueRow& row : Catalogue()) {
    if (!Runs(row)) continue;
    std::vector<std::string_view> words;
    for (const auto& parameter : harness::Parameters(row.declared.words)) {
      words.push_back(FittingWord(parameter.type));
    }
    EXPECT_EQ(ArgumentFault(row, words), "") << row.declared.words.name;
    words.push_back("1");
    EXPECT_THAT(ArgumentFault(row, words), testing::ContainsRegex("arguments?, not"))
        << row.declared.words.name;
  }
}

TEST(Catalogue, NamesNullableParametersThatExist) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.nullable.empty()) continue;
    std::vector<std::string_view> names;
    for (const auto& parameter : harness::Parameters(row.declared.words)) {
      names.push_back(parameter.name);
    }
    EXPECT_THAT(names, testing::Contains(row.nullable)) << row.declared.words.name;
  }
}

TEST(Catalogue, FindsTheFilesOfARunInItsWords) {
  const CatalogueRow& row = Row("TestNoizeusEx");
  const std::string_view off[] = {"4", "1"};
  const std::string_view light[] = {"1", "7"};
  const auto noisy = Inputs(row, off);
  ASSERT_THAT(noisy, SizeIs(30 + 960));
  EXPECT_EQ(noisy.back().name, "NOIZEUS/in/train/15dB/sp30_train_sn15.pcm");
  EXPECT_EQ(Outputs(row, off).front().name, "NOIZEUS/out/result_speech_snr_off_airport.txt");
  EXPECT_EQ(Inputs(row, light).back().name, "NOIZEUS/out/sp30_train_sn15_denoise_light.pcm");
  EXPECT_EQ(Outputs(row, light).front().name, "NOIZEUS/out/result__denoise_light_airport.txt");
  const std::string_view average[] = {"0", "0"};
  EXPECT_EQ(Inputs(row, average).back().name, "NOIZEUS/out/sp30_train_sn15_aec.pcm");
  EXPECT_EQ(Outputs(row, average).back().name, "NOIZEUS/out/result_avg_snr_aec_train.txt");
}

TEST(Catalogue, FindsTheFormatOfAFileInTheCodecOfARun) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int rawCodecId) {
    AudioStreamFormat format = {};
    format.iSampleRate = rawCodecId == 2 ? 16000 : 0;
    format.iNumOfChannels = rawCodecId == 2 ? 1 : 0;
    return format;
  };
  const CatalogueRow& judged = Row("TestVADCodecMosByVADResult");
  const auto input = [&](std::string_view id) {
    const std::string_view words[] = {"in.wav", "out.wav", "vad.wav", id};
    return Inputs(judged, words).at(0);
  };
  EXPECT_EQ(input("2").rate, 16000);
  EXPECT_EQ(input("2").channels, 1);
  EXPECT_EQ(input("99").rate, 0) << "no codec, any format";
  const std::string_view words[] = {"in.wav", "out.wav", "2", "64000", "0"};
  EXPECT_EQ(Outputs(Row("calAACMos"), words).at(0).name, "16000_1_{bitRate}.res.wav");
}

TEST(Catalogue, RefusesWordsThatFitTheirTypesAlone) {
  for (const std::string_view ns : {"-1", "5"}) {
    const std::string_view words[] = {ns, "0"};
    EXPECT_THAT(ArgumentFault(Row("TestNoizeusEx"), words), HasSubstr("must be 0 (aec), "));
  }
}

// They run without it, for what they say then.
TEST(Catalogue, RunsWhatReportsItsMissingInput) {
  for (const char* routine :
       {"TestAudioAccelerate", "TestAudioEncode", "TestRecord", "TestVADProcess"}) {
    EXPECT_TRUE(Row(routine).inputs.at(0).optional) << routine;
  }
}

TEST(Catalogue, SaysWhatComesOfARunWithoutAnOptionalInput) {
  std::string silent;
  for (const CatalogueRow& row : Catalogue()) {
    for (const auto& use : row.inputs) {
      if (use.optional == use.without.empty())
        silent += std::string(row.declared.words.name) + ": " + use.name + "\n";
    }
  }
  EXPECT_EQ(silent, "");
  EXPECT_EQ(Row("TestKaraokeRecorder").inputs.at(2).without, "no line is scored");
}

TEST(Catalogue, NamesTheFilesOfTheSelectedTest) {
  for (const char* routine : {"RunTestCase", "TestHRTF"}) {
    const CatalogueRow& row = Row(routine);
    ASSERT_THAT(row.inputs, SizeIs(1));
    EXPECT_EQ(row.inputs[0].name, "/sdcard/ZUAudioDemo/44100_2.pcm");
    EXPECT_EQ(row.inputs[0].container, Container::kHeaderless);
    EXPECT_EQ(row.inputs[0].samples, SampleType::kPcm16);
    EXPECT_EQ(row.inputs[0].rate, 44100);
    EXPECT_EQ(row.inputs[0].channels, 2);
    EXPECT_EQ(row.inputs[0].blockBytes, 441 * 2 * 2);
    ASSERT_THAT(row.outputs, SizeIs(1));
    EXPECT_EQ(row.outputs[0].name, "/sdcard/ZUAudioDemo/44100_2_out_902.pcm");
    EXPECT_EQ(row.outputs[0].container, Container::kHeaderless);
    EXPECT_EQ(row.outputs[0].samples, SampleType::kFloat32);
    EXPECT_EQ(row.outputs[0].rate, 44100);
    EXPECT_EQ(row.outputs[0].channels, 2);
  }
  EXPECT_THAT(Row("TestSilkMos").inputs, IsEmpty());
  EXPECT_THAT(Row("TestSilkMos").outputs, IsEmpty());
}
