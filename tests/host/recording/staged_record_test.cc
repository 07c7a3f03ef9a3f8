#include "recording/staged_record.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/recording/sound_files.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace host {
namespace {

class StagedRecordTest : public testing::Test {
 protected:
  TemporaryDirectory m_directory;
};

TEST_F(StagedRecordTest, HoldsSourceHashesAndSteps) {
  WriteFile("abc.wav", WavBytes({.channels = 2, .rate = 8000}, {1, 3, 5, 7}));
  ASSERT_EQ(FaultText(StageOne("abc.wav", RawShorts({8000, 1}))), "");
  const auto record = nlohmann::json::parse(ReadFile("work/staged.json"));
  auto expected = nlohmann::json::parse(R"({"schema_version": 1, "files": [{
    "place": "in",
    "sha256": "bef28849642bc5f0f208c33156297f4906512cbbf2943bcf1edf41c6821daed3",
    "bytes": 4,
    "was": "WAVE, 16-bit, 8000 Hz, stereo, 0.2 ms",
    "source_sha256": "55b8b81b820cfff3f64dc0d522fdedc073cbba0717bcd50c51ceac06653f2f38",
    "steps": [
      {"step": "channels", "text": "the mean of stereo", "value": 1.0, "unit": "1"},
      {"step": "samples", "text": "written as 16 bits", "value": 16.0, "unit": "bit"}]}]})");
  expected["files"][0]["source"] = (m_directory.path() / "abc.wav").string();
  EXPECT_EQ(record, expected);
}

TEST_F(StagedRecordTest, ReadsWhatItHasWritten) {
  const StagedFile file = {.place = "a/b.wav",
                           .digest = "12",
                           .bytes = 5,
                           .source = "/x/y.flac",
                           .sourceDigest = "34",
                           .was = "FLAC",
                           .steps = {{.name = "copy", .text = "copied"},
                                     {.name = "rate", .text = "to", .value = 8000, .unit = "Hz"}}};
  ASSERT_TRUE(AddToStagedRecord(".", {file}));
  StagedFile other = file;
  other.place = "c.wav";
  ASSERT_TRUE(AddToStagedRecord(".", {other}));
  other.digest = "56";
  ASSERT_TRUE(AddToStagedRecord(".", {other}));
  const std::vector<StagedFile> read = ReadStagedRecord(".");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].Line(), file.Line());
  EXPECT_EQ(read[0].digest, "12");
  EXPECT_EQ(read[0].sourceDigest, "34");
  EXPECT_EQ(read[0].steps[1].value, 8000);
  EXPECT_EQ(read[0].steps[1].unit, "Hz");
  EXPECT_FALSE(read[0].steps[0].value);
  EXPECT_EQ(read[1].digest, "56");
}

TEST_F(StagedRecordTest, WhatIsNoRecordSaysNothing) {
  EXPECT_TRUE(ReadStagedRecord(".").empty());
  for (const char* const text :
       {"", "{", "[]", "{\"files\": 3}", "{\"files\": [{\"place\": 1}]}"}) {
    WriteFile("staged.json", text);
    EXPECT_TRUE(ReadStagedRecord(".").empty()) << text;
  }
}

}  // namespace
}  // namespace host
