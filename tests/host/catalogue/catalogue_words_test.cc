// What the catalogue's documents say of a row, word for word.

#include <gmock/gmock.h>

#include <string>

#include "catalogue/catalogue_text.h"
#include "catalogue/list.h"

namespace host {
namespace {

using testing::HasSubstr;

TEST(CatalogueWords, NameGroups) {
  std::string names;
  std::string words;
  for (const Group group : kGroups) {
    names += std::string(GroupName(group)) + "\n";
    words += std::string(GroupWord(group)) + "\n";
  }
  EXPECT_EQ(names,
            "Harness\n"
            "Echo cancellation\n"
            "Speech enhancement, noise and voice activity\n"
            "Codecs and quality evaluation\n"
            "Effects and music processing\n"
            "Mixing, recording, playback and whole engines\n");
  EXPECT_EQ(words, "harness\naec\nenhancement\ncodec\neffects\nmixing\n");
}

TEST(CatalogueWords, NameContainersAndSamples) {
  EXPECT_EQ(ContainerName(Container::kOther), "other");
  EXPECT_EQ(ContainerName(Container::kHeaderless), "headerless");
  EXPECT_EQ(ContainerName(Container::kWave), "wave");
  EXPECT_EQ(ContainerName(Container::kRecording), "recording");
  EXPECT_EQ(SampleTypeName(SampleType::kPcm16), "pcm16");
  EXPECT_EQ(SampleTypeName(SampleType::kFloat32), "float32");
}

TEST(CatalogueWords, TellFormats) {
  EXPECT_EQ(FileFormat({}), "any content");
  EXPECT_EQ(FileFormat({.content = "a list"}), "a list");
  EXPECT_EQ(FileFormat({.container = Container::kWave}), "16-bit WAVE");
  EXPECT_EQ(FileFormat({.container = Container::kRecording}), "WAVE, FLAC, Ogg, MP3 or AAC");
  FileUse use = {.container = Container::kHeaderless, .rate = 16000, .channels = 2};
  EXPECT_EQ(FileFormat(use), "16-bit samples, 16000 Hz, stereo");
  use.samples = SampleType::kFloat32;
  EXPECT_EQ(FileFormat(use), "32-bit float samples, 16000 Hz, stereo");
}

TEST(CatalogueWords, NameDevices) {
  CatalogueRow row = FindRow("Nothing");
  EXPECT_EQ(DeviceName(row), "none");
  row.device = Device::kCapture;
  EXPECT_EQ(DeviceName(row), "capture");
  row.device = Device::kRender;
  EXPECT_EQ(DeviceName(row), "render");
  row.device = Device::kBoth;
  EXPECT_EQ(DeviceName(row), "capture and render");
}

TEST(CatalogueWords, TellWhatCanBeRun) {
  CatalogueRow row = FindRow("Nothing");
  EXPECT_EQ(Availability(row), "available");
  EXPECT_TRUE(CanBeRun(row));
  row.helper = true;
  EXPECT_EQ(Availability(row), "helper");
  EXPECT_FALSE(CanBeRun(row));
  row.calledBy = "TestOther";
  EXPECT_EQ(Availability(row), "called by TestOther");
  EXPECT_FALSE(CanBeRun(FindRow("NeedNothing")));
}

TEST(CatalogueWords, TellDurations) {
  CatalogueRow row = FindRow("Nothing");
  EXPECT_EQ(Duration(row), "as fast as its input is processed");
  row.seconds = 2;
  EXPECT_EQ(Duration(row), "2.00 s");
  row.runsOn = 3;
  EXPECT_EQ(Duration(row),
            "what it starts runs on after it has returned: for up to 3.00 s, or --linger-s");
  row.neverReturns = true;
  EXPECT_EQ(Duration(row), "until it is stopped: after 10 s, or --timeout-s");
}

// Byte for byte, so that no key is renamed, left out or put elsewhere.
TEST(CatalogueWords, GiveARowAsJson) {
  std::string text = ListAsJson({.glob = "CopyIfThere"}, {});
  // The engine, which stands there with the path of this program.
  const size_t start = text.find("{\n    \"name\": \"desktop engine\"");
  const size_t end = text.find("\n  },\n", start);
  ASSERT_NE(end, std::string::npos) << text;
  text.replace(start, end + 4 - start, "ENGINE");
  EXPECT_EQ(text, R"({
  "schema_version": 3,
  "engine": ENGINE,
  "routines": [
    {
      "routine": "CopyIfThere",
      "result": "void",
      "parameters": [
        {
          "type": "const char*",
          "name": "outFile"
        }
      ],
      "group": "harness",
      "exercises": "",
      "helper": false,
      "called_by": null,
      "available": true,
      "status": "available",
      "inputs": [
        {
          "name": "fixed.in",
          "pattern": null,
          "file_count": {
            "value": 1,
            "unit": "files"
          },
          "place": "fixed.in",
          "container": "other",
          "samples": null,
          "rate": {
            "value": null,
            "unit": "Hz",
            "reason": "not audio"
          },
          "channel_count": {
            "value": null,
            "unit": "channels",
            "reason": "not audio"
          },
          "rates": null,
          "channel_counts": null,
          "block": {
            "value": null,
            "unit": "bytes",
            "reason": "none is needed, or the header decides"
          },
          "optional": true,
          "without": null,
          "may_be_empty": false,
          "appended": false,
          "part_read": null,
          "remark": null
        }
      ],
      "outputs": [
        {
          "name": "{outFile}",
          "pattern": null,
          "file_count": {
            "value": 1,
            "unit": "files"
          },
          "place": null,
          "container": "other",
          "samples": null,
          "rate": {
            "value": null,
            "unit": "Hz",
            "reason": "not audio"
          },
          "channel_count": {
            "value": null,
            "unit": "channels",
            "reason": "not audio"
          },
          "rates": null,
          "channel_counts": null,
          "block": {
            "value": null,
            "unit": "bytes",
            "reason": "none is needed, or the header decides"
          },
          "optional": false,
          "without": null,
          "may_be_empty": false,
          "appended": false,
          "part_read": null,
          "remark": null
        }
      ],
      "device": "none",
      "expected_duration": {
        "value": null,
        "unit": "s",
        "reason": "as fast as its input is processed"
      }
    }
  ]
}
)");
}

TEST(CatalogueWords, DescribeLists) {
  EXPECT_EQ(Describe("CopyList"),
            "CopyList\n"
            "  declaration   void CopyList(int milliseconds)\n"
            "  group         Harness\n"
            "  exercises     \n"
            "  input         list/in<n>.pcm\n"
            "                16-bit samples without a header; 8000 Hz; mono; 40 files\n"
            "                in the workspace: list/in<n>.pcm\n"
            "  input         list/far<n>.pcm\n"
            "                16-bit samples without a header; 8000 Hz; mono; 2 files\n"
            "                in the workspace: list/far<n>.pcm\n"
            "  output        list/out<n>.pcm\n"
            "                16-bit samples, 8000 Hz, mono; 40 files; replaced\n"
            "                in the workspace: list/out<n>.pcm\n"
            "  device        none\n"
            "  duration      as fast as its input is processed\n"
            "  status        available\n");
  EXPECT_THAT(ListAsMarkdown({.glob = "CopyList"}),
              HasSubstr("| `list/in<n>.pcm` (16-bit samples, 8000 Hz, mono; 40 files)<br>"
                        "`list/far<n>.pcm` (16-bit samples, 8000 Hz, mono; 2 files) | "
                        "`list/out<n>.pcm` (16-bit samples, 8000 Hz, mono; 40 files) | none | "
                        "available |\n"));
}

TEST(CatalogueWords, DescribeWhatIsNotRunByItself) {
  EXPECT_EQ(Describe("Helper"),
            "Helper\n"
            "  declaration   void Helper()\n"
            "  group         Harness\n"
            "  exercises     help\n"
            "  status        helper: called by routines, not run by itself\n");
}

}  // namespace
}  // namespace host
