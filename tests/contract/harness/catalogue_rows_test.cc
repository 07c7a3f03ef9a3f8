// What the rows say of every routine besides its files, written apart from them.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"
#include "catalogue_row_of.h"
#include "fake_engine/codec/audio_codec.h"
#include "fake_engine/codec/local_codec.h"
#include "fake_engine/fake_engine.h"

using harness::Catalogue;
using harness::CatalogueRow;
using harness::Device;
using testing::ElementsAre;

namespace {

std::string Milliseconds(double seconds) {
  return std::to_string(std::lround(1000 * seconds)) + " ms";
}

// What is declared of a row besides its files: "TestFilePlayer render, runs on 10000 ms".
std::string Facts(const CatalogueRow& row) {
  std::string text;
  if (row.device == Device::kCapture) text += " capture";
  if (row.device == Device::kRender) text += " render";
  if (row.device == Device::kBoth) text += " capture and render";
  if (row.seconds > 0) text += ", takes " + Milliseconds(row.seconds);
  if (row.runsOn > 0) text += ", runs on " + Milliseconds(row.runsOn);
  if (row.neverReturns) text += ", never returns";
  if (!row.calledBy.empty()) text += ", called by " + std::string(row.calledBy);
  if (!row.nullable.empty()) text += ", " + std::string(row.nullable) + " may be null";
  return text.empty() ? "" : std::string(row.declared.words.name) + text;
}

// Words that fit, raw id 55 and type SILK_CODEC where a codec is asked for.
std::vector<std::string_view> CodecWords(const CatalogueRow& row) {
  std::vector<std::string_view> words;
  for (const auto& [type, name] : harness::Parameters(row.declared.words)) {
    const bool codec = name == "codecId" || name == "codecType";
    words.push_back(codec                                       ? "55"
                    : type == "bool"                            ? "true"
                    : type == "AudioLocalCodec::AudioCodecType" ? "SILK_CODEC"
                                                                : "1");
  }
  return words;
}

}  // namespace

TEST(CatalogueRows, SayHowARoutineRuns) {
  std::vector<std::string> facts;
  for (const CatalogueRow& row : Catalogue()) {
    if (const std::string text = Facts(row); !text.empty()) facts.push_back(text);
  }
  EXPECT_THAT(facts, ElementsAre("TestZUAECNSProcess, called by TestTemp",
                                 "TestZUAECProcess, pFarendFileName may be null",
                                 "TestRecord, runs on 2000 ms", "TestMeasureVAD, called by TestVAD",
                                 "TestKaraokeRecorder capture and render, takes 100 ms",
                                 "TestFilePlayer render, runs on 10000 ms",
                                 "TestAudioRecorder capture, never returns",
                                 "TestAudioSaver capture and render, takes 10000 ms",
                                 "TestSpeechMsg render, takes 60000 ms",
                                 "TestAudioChannel capture and render, takes 20000 ms"));
}

TEST(CatalogueRows, SayWhichCodecTheEngineLacks) {
  FakeEngine engine;
  engine.script<AudioCodecScript>().isAvailable = [](auto, auto) { return false; };
  engine.script<LocalCodecScript>().isAvailable = [](auto) { return false; };
  std::vector<std::string> lacking;
  for (const CatalogueRow& row : Catalogue()) {
    if (row.declared.run == nullptr) continue;
    const std::string text = Lacking(row, CodecWords(row));
    const std::string start = "this engine has no ";
    if (text.empty()) continue;
    ASSERT_EQ(text.substr(0, start.size()), start);
    lacking.push_back(std::string(row.declared.words.name) + ": " +
                      text.substr(start.size(), text.rfind(": it was built") - start.size()));
  }
  EXPECT_THAT(
      lacking,
      ElementsAre("TestZUStreamToAAC: codec of family 64", "TestAudioEncode: local codec of type 4",
                  "TestZUEAACCodec: codec of family 16", "TestZUEldCodec: codec of family 256",
                  "TestDecodeFile: local codec of type 2", "TestSilkPackerOut: codec of family 4",
                  "TestAACStreamToAAC: codec of family 64",
                  "TestVADCodecMosByVADResult: codec for raw id 55",
                  "TestZUAudioProcessor: codec of family 16", "TestZUEncode: codec for raw id 55",
                  "TestZUDecode: codec for raw id 55", "newTestZUEncode: codec for raw id 55",
                  "newTestZUDecode: codec for raw id 55", "TestZUCodecNew: codec for raw id 55",
                  "TestMockVADMos: codec for raw id 55", "calAACMos: codec for raw id 55",
                  "TestKaraokeFileMixer: codec of family 16",
                  "TestAudioRecorder: codec of family 16", "TestAudioSaver: codec of family 16",
                  "TestAudioChannel: codec for raw id 55"));
}

// Half a codec will not do, and an id that no engine has a codec for is for the routine to meet.
TEST(CatalogueRows, AskForTheEncoderAndTheDecoder) {
  FakeEngine engine;
  const std::string_view decode[] = {"in", "out", "55", "false"};
  EXPECT_EQ(Lacking(Row("TestZUDecode"), decode), "");
  for (const AudioLibraryCodecMode there : {kAudioLibraryEncoder, kAudioLibraryDecoder}) {
    engine.script<AudioCodecScript>().isAvailable = [there](ZUAudioCodec, auto mode) {
      return mode == there;
    };
    EXPECT_NE(Lacking(Row("TestZUDecode"), decode), "");
  }
  const std::string_view unknown[] = {"in", "out", "54", "false"};
  EXPECT_EQ(Lacking(Row("TestZUDecode"), unknown), "");
  EXPECT_EQ(engine.live.count("CAudioCodec"), 0U);
}
