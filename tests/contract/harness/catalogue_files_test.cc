// The files of every routine, written apart from the rows.

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "catalogue_row_of.h"
#include "fake_engine/codec/codec_format.h"
#include "fake_engine/fake_engine.h"
#include "files_of_routines.h"

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Container;
using harness::FileUse;
using harness::MadeOnce;
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
  if (use.onlyRight) text += " only";
  if (use.alsoTakenFor.rate > 0 || use.alsoTakenFor.channels > 0)
    text += " or taken for" + Format(use.alsoTakenFor.rate, use.alsoTakenFor.channels);
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

std::vector<std::string> Names(const std::vector<FileUse>& uses) {
  std::vector<std::string> names;
  for (const FileUse& use : uses) names.push_back(use.name);
  return names;
}

int g_made = 0;  // Calls of CountedFiles.

std::vector<FileUse> CountedFiles() {
  ++g_made;
  return {{.name = "one"}, {.name = "two"}};
}

}  // namespace

TEST(CatalogueFiles, DeclareWhatEachRoutineReadsAndWrites) {
  const auto& all = FilesOfRoutines();
  auto expected = all.begin();
  for (const CatalogueRow& row : Catalogue()) {
    if (row.inputs.empty() && row.outputs.empty()) continue;
    ASSERT_NE(expected, all.end());
    EXPECT_EQ(row.declared.words.name, expected->routine);
    EXPECT_THAT(Texts(row.inputs), ElementsAreArray(expected->inputs)) << expected->routine;
    EXPECT_THAT(Texts(row.outputs), ElementsAreArray(expected->outputs)) << expected->routine;
    ++expected;
  }
  EXPECT_EQ(expected, all.end());
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

TEST(FileList, IsMadeOnceWhenItIsAskedFor) {
  const harness::FileList later = MadeOnce<CountedFiles>;
  const harness::FileList copy = later;
  EXPECT_EQ(g_made, 0);
  EXPECT_TRUE(copy.IsMadeLater());
  EXPECT_THAT(Names(copy), ElementsAre("one", "two"));
  EXPECT_EQ(later.size(), 2U);
  EXPECT_EQ(g_made, 1);
  const harness::FileList own = {FileUse{.name = "one"}};
  EXPECT_FALSE(own.IsMadeLater());
  EXPECT_THAT(Names(own), ElementsAre("one"));
}

TEST(CatalogueFiles, AreNotMadeAtTheStartOfTheProcessWhereTheyAreMany) {
  for (const CatalogueRow& row : Catalogue()) {
    for (const harness::FileList* const list : {&row.inputs, &row.outputs}) {
      EXPECT_TRUE(list->IsMadeLater() || list->size() <= 60) << row.declared.words.name;
    }
  }
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

TEST(CatalogueFiles, AreTakenInTheFormatOfTheCodecOnly) {
  FakeEngine engine;
  engine.script<CodecFormatScript>().format = [](int id) {
    AudioStreamFormat format = {};
    format.iSampleRate = 1000 * id;
    format.iNumOfChannels = id;
    format.iSamplesOfFrame = 10;
    return format;
  };
  const auto inputs = [](std::string_view routine, std::vector<std::string_view> words) {
    const std::vector<FileUse> uses = Inputs(Row(routine), words);
    for (const FileUse& use : uses) {
      EXPECT_EQ(use.formatBy, use.onlyRight ? "codec/codec_format" : use.formatBy) << routine;
    }
    return Texts(uses);
  };
  const std::string name = "{wavInFileName} wave ";
  EXPECT_THAT(inputs("TestZUEncode", {"i", "o", "2", "true"}),
              ElementsAre(name + "2000x2 only block 2"));
  EXPECT_THAT(inputs("newTestZUEncode", {"i", "o", "2", "1", "1", "true"}),
              ElementsAre(name + "2000x2 only block 2"));
  EXPECT_THAT(inputs("TestZUCodecNew", {"i", "o", "55"}),
              ElementsAre(name + "55000x55 only block 2"));
  EXPECT_THAT(inputs("TestVADCodecMosByVADResult", {"i", "o", "v", "2"}),
              ElementsAre("{pSrcFileName} wave 2000x2 else nothing only block 40"));
  EXPECT_THAT(inputs("TestMockVADMos", {"i", "2"}),
              ElementsAre("{refFile} wave 10 ms",
                          "{refFile}.preproc.wav wave 2000x2 only or taken for 16000x1 copy 44 "
                          "block 320 optional (nothing in the bench writes it)"));
  EXPECT_THAT(inputs("TestZUEncode", {"i", "o", "3", "true"}), ElementsAre(name + "3000x3 block 2"))
      << "an id that stands for no codec codes nothing";
}
