// What can be heard in the page: the samples of the files, cut at the same time.

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "../recording/sound_files.h"
#include "page_fixture.h"
#include "support/file_bytes.h"
#include "support/signals.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kWave = 0x010000;
constexpr int k16Bits = 0x0002;
constexpr int k24Bits = 0x0003;
constexpr int kFloats = 0x0006;

using PageSoundTest = PageTest;

std::vector<double> Part(const std::vector<double>& samples, size_t first, size_t count) {
  return {samples.begin() + static_cast<std::ptrdiff_t>(first),
          samples.begin() + static_cast<std::ptrdiff_t>(first + count)};
}

std::vector<double> Delayed(const std::vector<double>& samples, size_t by) {
  std::vector<double> delayed(by);
  delayed.insert(delayed.end(), samples.begin(), samples.end() - static_cast<std::ptrdiff_t>(by));
  return delayed;
}

const Json& PlayerOf(const PageData& data) { return data.json["cases"][0]["players"][0]; }

std::vector<std::string> KeysOf(const Json& player) {
  std::vector<std::string> keys;
  for (const Json& version : player["versions"]) keys.push_back(version["key"]);
  return keys;
}

TEST_F(PageSoundTest, HoldsTheSamplesOfTheFile) {
  const std::vector<double> sound = BurstNoise(16000 * 2, 0.5, 16000, 1);
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, sound);
  const PageData data = DataOf("r");
  EXPECT_EQ(Decoded(data, "0-0-output"), ReadSound("r/cases/c/out.wav").samples)
      << "shorter than an excerpt: all of it";
  const Json& player = PlayerOf(data);
  EXPECT_EQ(player["title"], "out.wav");
  EXPECT_EQ(player["start"], 0.0);
  EXPECT_EQ(player["seconds"], 2.0);
  EXPECT_EQ(player["whole"], 2.0);
  EXPECT_THAT(KeysOf(player), ElementsAre("output", "input"));
  const Json& output = player["versions"][0];
  EXPECT_EQ(output["label"], "Output");
  EXPECT_EQ(output["file"], "out.wav");
  EXPECT_EQ(output["audio"], "0-0-output");
  EXPECT_EQ(output["href"], Json());
  EXPECT_EQ(output["rate"], 16000);
  EXPECT_EQ(output["channels"], 1);
  EXPECT_EQ(output["gain"], 0.0);
  EXPECT_EQ(output["delay"], 0.0);
  EXPECT_EQ(player["difference"]["identical"], true);
  EXPECT_EQ(player["difference"]["of"], Json({"output", "input"}));
}

TEST_F(PageSoundTest, HoldsAllBitsOfWiderSamples) {
  std::vector<double> sound = WhiteNoise(16000, 0.5, 2);
  for (double& sample : sound) sample = std::nearbyint(sample * 8388608) / 8388608;
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, sound);
  WriteSound("r/cases/c/out.wav", {.format = kWave | k24Bits, .rate = 16000, .samples = sound});
  EXPECT_EQ(Decoded(DataOf("r"), "0-0-output"), sound);
}

// What has no room in integers is softer, not wrapped, and the page says by how much.
TEST_F(PageSoundTest, ScalesWhatGoesBeyondFullScale) {
  std::vector<double> sound = WhiteNoise(16000, 0.5, 3);
  sound[8000] = 2;
  sound[8001] = -1.5;
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, sound);
  WriteSound("r/cases/c/out.wav", {.format = kWave | kFloats, .rate = 16000, .samples = sound});
  const PageData data = DataOf("r");
  const std::vector<double> played = Decoded(data, "0-0-output");
  ASSERT_EQ(played.size(), sound.size());
  for (size_t i = 0; i < sound.size(); ++i) ASSERT_NEAR(played[i], sound[i] / 2, 1e-6) << i;
  const Json& versions = PlayerOf(data)["versions"];
  EXPECT_NEAR(versions[0]["gain"].get<double>(), -6.02, 0.01);
  // The input is the same but for two samples, and plays as loud as it is.
  EXPECT_NEAR(versions[0]["lufs"].get<double>(), versions[1]["lufs"].get<double>() - 6.02, 0.1);
  EXPECT_THAT(
      data.json["cases"][0]["notes"].dump(),
      HasSubstr("Output out.wav goes beyond full scale and plays 6.0 dB softer than it is"));
}

TEST_F(PageSoundTest, LinesUpADelayedCopyToTheSample) {
  const std::vector<double> input = BurstNoise(16000 * 12, 0.5, 16000, 4);
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", input, Delayed(input, 1234));
  const PageData data = DataOf("r", "", {.excerpt = 2});
  const std::vector<double> out = Decoded(data, "0-0-output");
  EXPECT_EQ(out.size(), 32000U);
  EXPECT_EQ(out, Decoded(data, "0-0-input"));
  const Json& player = PlayerOf(data);
  EXPECT_NEAR(player["versions"][1]["delay"].get<double>(), 1234 / 16000.0, 1e-6);
  const auto first = static_cast<size_t>(std::lround(player["start"].get<double>() * 16000));
  EXPECT_EQ(out, Part(ReadSound("r/cases/c/out.wav").samples, first, 32000));
}

// Before its start and after its end a recording is silent; all excerpts have one length.
TEST_F(PageSoundTest, FillsUpWhatLiesBeyondAnEnd) {
  const std::vector<double> input = BurstNoise(16000, 0.5, 16000, 5);
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", input, Delayed(input, 1600));
  const PageData data = DataOf("r");
  const std::vector<double> in = Decoded(data, "0-0-input");
  ASSERT_EQ(in.size(), 16000U);
  EXPECT_TRUE(std::all_of(in.begin(), in.begin() + 1600, [](double each) { return each == 0; }));
  EXPECT_EQ(in, Decoded(data, "0-0-output"));
}

TEST_F(PageSoundTest, PlaysTheGuardThatFailsBeforeTheOneThatWarns) {
  const std::vector<double> sound = BurstNoise(16000 * 12, 0.5, 16000, 6);
  Json one = CaseOf("c", "fail");
  one["guards"] = {GuardJson("click", "out.wav", 2, false),
                   GuardJson("dropout", "out.wav", 9, true),
                   GuardJson("clipped", "other.wav", 5, true)};
  WriteSuite("r", {one});
  WriteSounds("r", "c", sound, sound);
  const PageData data = DataOf("r", "", {.excerpt = 2});
  const Json& player = PlayerOf(data);
  EXPECT_EQ(player["start"], 8.0);
  EXPECT_EQ(player["marks"], Json::array({{{"at", 2.0}, {"channel", 0}, {"name", "click"}},
                                          {{"at", 9.0}, {"channel", 0}, {"name", "dropout"}}}));
}

TEST_F(PageSoundTest, PlaysWhereTheOtherRunDiffersMost) {
  const std::vector<double> sound = BurstNoise(16000 * 12, 0.25, 16000, 7);
  std::vector<double> changed = sound;
  for (size_t i = 16000 * 7; i < 16000 * 7 + 3200; ++i) changed[i] += i % 2 == 0 ? 0.05 : -0.05;
  WriteSuite("a", {CaseOf("c", "pass")});
  WriteSounds("a", "c", sound, sound);
  WriteSuite("b", {CaseOf("c", "pass")});
  WriteSounds("b", "c", sound, changed);
  const PageData data = DataOf("b", "a", {.excerpt = 2});
  const Json& player = PlayerOf(data);
  EXPECT_NEAR(player["start"].get<double>() + 1, 7.1, 0.3);
  EXPECT_THAT(KeysOf(player), ElementsAre("output", "input", "against"));
  EXPECT_EQ(player["versions"][2]["label"], "a");
  EXPECT_EQ(player["difference"]["of"], Json({"output", "against"}));
  const auto first = static_cast<size_t>(std::lround(player["start"].get<double>() * 16000));
  EXPECT_EQ(Decoded(data, "0-0-against"),
            Part(ReadSound("a/cases/c/out.wav").samples, first, 32000));
}

TEST_F(PageSoundTest, PlaysTheLoudestPartWhereNothingElseTells) {
  std::vector<double> sound = BurstNoise(16000 * 12, 0.05, 16000, 8);
  for (size_t i = 16000 * 4; i < 16000 * 5; ++i) sound[i] *= 8;
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, sound);
  EXPECT_NEAR(PlayerOf(DataOf("r", "", {.excerpt = 2}))["start"].get<double>(), 3.5, 0.3);
}

TEST_F(PageSoundTest, SaysHowFarTheOutputIsFromTheOther) {
  const std::vector<double> sound = BurstNoise(16000 * 4, 0.5, 16000, 9);
  const std::vector<double> noise = WhiteNoise(16000 * 4, 0.02, 10);
  std::vector<double> output(sound.size());
  for (size_t i = 0; i < sound.size(); ++i) output[i] = 0.5 * sound[i] + noise[i];
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, output);
  const Json difference = PlayerOf(DataOf("r"))["difference"];
  EXPECT_NEAR(difference["gain"].get<double>(), Decibels(0.5), 0.02);
  EXPECT_NEAR(difference["db"].get<double>(), Decibels(Rms(noise)), 0.05);
  EXPECT_NEAR(difference["relative"].get<double>(), Decibels(Rms(noise) / (0.5 * Rms(sound))),
              0.05);
  EXPECT_EQ(difference["identical"], false);
}

TEST_F(PageSoundTest, SaysHowLoudItPlays) {
  const std::vector<double> tone = Sine(1000, -20, 16000, 16000 * 3);
  WriteSuite("r", {CaseOf("c", "pass"), CaseOf("silent", "pass")});
  WriteSounds("r", "c", tone, tone);
  const std::vector<double> silence(16000 * 3);
  WriteSounds("r", "silent", silence, silence);
  const PageData data = DataOf("r");
  // BS.1770: a sine at 1 kHz in one channel has 3.01 less than its peak, in LUFS.
  EXPECT_NEAR(PlayerOf(data)["versions"][0]["lufs"].get<double>(), -23.0, 0.1);
  EXPECT_EQ(data.json["cases"][1]["players"][0]["versions"][0]["lufs"], Json());
}

TEST_F(PageSoundTest, LeavesOutInWordsWhatCannotBeRead) {
  const std::vector<double> sound = BurstNoise(16000, 0.5, 16000, 11);
  WriteSuite("r", {CaseOf("gone", "fail"), CaseOf("noinput", "fail"), CaseOf("text", "fail")});
  WriteSounds("r", "noinput", sound, sound);
  std::filesystem::remove("r/cases/noinput/in.wav");
  Write("r/cases/text/out.wav", "no sound at all");
  const Json page = DataOf("r").json;
  EXPECT_EQ(page["cases"][0]["players"], Json::array());
  EXPECT_THAT(page["cases"][0]["notes"][0].get<std::string>(),
              "Output out.wav cannot be heard: it cannot be read (No such file or directory)");
  EXPECT_THAT(KeysOf(page["cases"][1]["players"][0]), ElementsAre("output"));
  EXPECT_THAT(page["cases"][1]["notes"].dump(), HasSubstr("Input in.wav cannot be heard"));
  EXPECT_EQ(page["cases"][2]["players"], Json::array());
  EXPECT_THAT(page["cases"][2]["notes"].dump(), HasSubstr("Output out.wav cannot be heard"));
}

// The results may have been moved since, with their workspaces.
TEST_F(PageSoundTest, FindsTheRecordingsOfResultsThatWereMoved) {
  const std::vector<double> sound = BurstNoise(16000, 0.5, 16000, 12);
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", sound, sound);
  std::filesystem::rename("r", "elsewhere");
  EXPECT_THAT(KeysOf(PlayerOf(DataOf("elsewhere"))), ElementsAre("output", "input"));
}

// A canceller that leaves a tenth of the echo, and is late: what it was given, and what the
// loudspeaker played, run beside each other.
TEST_F(PageSoundTest, PlaysAllThatBelongsWithACanceller) {
  const std::vector<double> far = BurstNoise(16000 * 8, 0.5, 16000, 13);
  std::vector<double> microphone = Delayed(far, 800);
  for (double& sample : microphone) sample *= 0.5;
  std::vector<double> left = Delayed(microphone, 160);
  for (double& sample : left) sample *= 0.1;
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", microphone, left);
  WriteSound("r/cases/c/far.wav", {.format = kWave | k16Bits, .rate = 16000, .samples = far});
  MeasureAgainst("r", "c", {{"far", "far.wav"}});
  const PageData data = DataOf("r");
  const Json& player = PlayerOf(data);
  EXPECT_THAT(KeysOf(player), ElementsAre("output", "input", "far"));
  EXPECT_EQ(player["versions"][2]["label"], "Far end");
  EXPECT_EQ(player["versions"][2]["file"], "far.wav");
  EXPECT_NEAR(player["versions"][1]["delay"].get<double>(), 0.01, 1e-4);
  EXPECT_EQ(player["versions"][2]["delay"], player["versions"][1]["delay"]);
  ASSERT_EQ(player["curves"].size(), 1U);
  const Json& curve = player["curves"][0];
  EXPECT_EQ(curve["name"], "ERLE");
  EXPECT_EQ(curve["unit"], "dB");
  EXPECT_EQ(curve["from"], player["start"]);
  EXPECT_EQ(curve["step"], 0.1);
  EXPECT_EQ(curve["values"].size(), 60U);
  size_t known = 0;
  for (const Json& value : curve["values"]) {
    if (value.is_null()) continue;
    ++known;
    EXPECT_NEAR(value.get<double>(), 20, 0.5);
  }
  EXPECT_GT(known, 20U);
}

// A canceller that is half a second late, and better from the fourth second of its input on.
TEST_F(PageSoundTest, DrawsEchoLossAtTheTimeOfTheOutput) {
  const std::vector<double> far = BurstNoise(16000 * 8, 0.5, 16000, 22);
  std::vector<double> left = far;
  for (size_t i = 0; i < left.size(); ++i) left[i] *= i < 16000 * 4 ? 0.1 : 0.01;
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", far, Delayed(left, 8000));
  WriteSound("r/cases/c/far.wav", {.format = kWave | k16Bits, .rate = 16000, .samples = far});
  MeasureAgainst("r", "c", {{"far", "far.wav"}});
  const PageData data = DataOf("r", "", {.excerpt = 8});
  const Json& values = PlayerOf(data)["curves"][0]["values"];
  for (size_t i = 0; i < values.size(); ++i) {
    if (values[i].is_null() || (i > 40 && i < 50)) continue;
    EXPECT_NEAR(values[i].get<double>(), i < 45 ? 20 : 40, 2) << i;
  }
}

// What is at another rate is heard at its own, and cut at the same time.
TEST_F(PageSoundTest, HoldsOutputAndReferenceAtTheirOwnRates) {
  const std::vector<double> clean = Sine(440, -10, 48000, 48000 * 8);
  std::vector<double> noisy = Sine(440, -10, 16000, 16000 * 8);
  const std::vector<double> noise = WhiteNoise(16000 * 8, 0.01, 14);
  for (size_t i = 0; i < noisy.size(); ++i) noisy[i] += noise[i];
  WriteSuite("r", {CaseOf("c", "pass")});
  WriteSounds("r", "c", noisy, noisy);
  WriteSound("r/cases/c/clean.wav", {.format = kWave | k16Bits, .rate = 48000, .samples = clean});
  MeasureAgainst("r", "c", {{"reference", "clean.wav"}, {"input", Json()}});
  const PageData data = DataOf("r", "", {.excerpt = 2});
  const Json& player = PlayerOf(data);
  EXPECT_THAT(KeysOf(player), ElementsAre("output", "reference"));
  EXPECT_EQ(player["versions"][1]["rate"], 48000);
  EXPECT_EQ(Decoded(data, "0-0-output").size(), 32000U);
  EXPECT_EQ(Decoded(data, "0-0-reference").size(), 96000U);
  EXPECT_EQ(player["difference"]["of"], Json({"output", "reference"}));
  ASSERT_EQ(player["curves"].size(), 1U);
  EXPECT_EQ(player["curves"][0]["name"], "SNR");
  const double snr = Decibels(Rms(Sine(440, -10, 16000, 16000)) / Rms(noise));
  for (const Json& value : player["curves"][0]["values"]) {
    EXPECT_NEAR(value.get<double>(), snr, 1.5);
  }
}

}  // namespace
}  // namespace host
