// Scorers of the user's: what they are handed, what is read of them, and what is wrong with them.

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "bench_process.h"
#include "report_schema.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"
#include "support/tone.h"
#include "support/wav_bytes.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

// Prints what stands in the header of a file: an offset, a width, and the file.
constexpr const char* kFieldScript =
    "echo \"value $(od -An -tu$2 -j$1 -N$2 $3 | tr -d ' ')\"\n"
    "echo the end\n";

class ScorerTest : public testing::Test {
 protected:
  ScorerTest() {
    std::filesystem::create_directories("config/audio_bench");
    setenv("XDG_CONFIG_HOME", (std::filesystem::current_path() / "config").c_str(), 1);
    WriteFile("config/audio_bench/field.sh", kFieldScript);
  }
  ~ScorerTest() override { unsetenv("XDG_CONFIG_HOME"); }

  static void WriteUserFile(const std::string& text) {
    WriteFile("config/audio_bench/measures.toml", text);
  }

  static std::string Table(const std::string& name, const std::string& command,
                           const std::string& more = "") {
    return "[measure." + name + "]\ncommand = " + command + "\npattern = 'value ([-+0-9.]+)'\n" +
           more + "\n";
  }

  // One that prints a field of the header of a file.
  static std::string Field(const std::string& name, const std::string& words,
                           const std::string& more = "") {
    return Table(name, "[\"sh\", \"{folder}/field.sh\", " + words + "]", more);
  }

  // One that does what a shell is told.
  static std::string Shell(const std::string& name, const std::string& does,
                           const std::string& more = "") {
    return Table(name, "[\"sh\", \"-c\", '" + does + "']", more);
  }

  static void WriteTone(const std::string& path, int rate, int amplitude = 8000) {
    WriteFile(path, WavBytes({.channels = 1, .rate = static_cast<uint32_t>(rate)},
                             Tone(500, amplitude, rate, rate)));
  }

  static Finished Bench(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH);
    return RunProcess(words);
  }

  // The figure of a file by one scorer.
  static json Figure(const std::string& name, std::vector<std::string> words) {
    words.insert(words.begin(), "measure");
    words.insert(words.end(), {"--measure", name, "--json", "figures.json"});
    const Finished finished = Bench(words);
    EXPECT_EQ(finished.exitCode, 0) << finished.err;
    const json measured = ParseMeasured(ReadFile("figures.json"));
    EXPECT_EQ(measured["figures"].size(), 1U);
    return measured["figures"].empty() ? json() : measured["figures"][0];
  }

  static json Reason(const std::string& name) {
    const json figure = Figure(name, {"tone.wav"});
    EXPECT_EQ(figure["value"], nullptr);
    return figure["reason"];
  }

  TemporaryDirectory m_directory;
};

TEST_F(ScorerTest, GetsFilesOf16BitsInARateThatItTakes) {
  const std::string rates = "rates = [8000, 16000]";
  WriteUserFile(Field("own", "\"24\", \"4\", \"{output}\"", rates) +
                Field("other", "\"24\", \"4\", \"{reference}\"", rates) +
                Field("bits", "\"34\", \"2\", \"{reference}\"", rates) +
                Field("any", "\"24\", \"4\", \"{output}\"") +
                Shell("told", "echo value {rate}", rates));
  for (const auto& [rate, taken] : {std::pair{8000, 8000}, {11025, 16000}, {48000, 16000}}) {
    WriteTone("out.wav", rate);
    WriteTone("reference.wav", 44100);
    const std::vector<std::string> files = {"out.wav", "--against", "reference.wav"};
    EXPECT_EQ(Figure("own", files)["value"], taken);
    EXPECT_EQ(Figure("other", files)["value"], taken);
    EXPECT_EQ(Figure("told", files)["value"], taken);
    EXPECT_EQ(Figure("bits", files)["value"], 16);
    EXPECT_EQ(Figure("any", files)["value"], rate);
  }
}

TEST_F(ScorerTest, IsAMeasureLikeOthers) {
  WriteTone("tone.wav", 16000);
  WriteUserFile(
      Shell("mos", "echo value 1; echo value +3.25", "unit = \"MOS\"\nhigher_is_better = true") +
      Shell("noise", "echo value -2 >&2", "higher_is_better = false"));
  const json figure = Figure("mos", {"tone.wav"});
  EXPECT_EQ(figure["value"], 3.25);  // What it has said last.
  EXPECT_EQ(figure["unit"], "MOS");
  EXPECT_EQ(figure["better"], "higher");
  EXPECT_EQ(figure["channel"], nullptr);
  EXPECT_EQ(figure["file"], "tone.wav");
  EXPECT_EQ(figure["version"], 0);
  EXPECT_EQ(figure["untrusted"], true);
  EXPECT_EQ(Figure("noise", {"tone.wav"})["value"], -2);
  EXPECT_EQ(Figure("noise", {"tone.wav"})["better"], "lower");
  const Finished mixed = Bench({"measure", "tone.wav", "--measure", "rms,mos,peak"});
  EXPECT_THAT(mixed.out, testing::ContainsRegex("rms .*\n.*mos +3.25 +MOS +higher.*\n.*peak "));
  const Finished list = Bench({"measure", "--list"});
  EXPECT_THAT(list.out, HasSubstr("mos  MOS, higher is better\n    Scored by: sh -c "));
}

TEST_F(ScorerTest, WithoutAFigureHasAReason) {
  WriteTone("tone.wav", 16000);
  WriteUserFile(Table("missing", "[\"no-such-scorer\"]") +
                Shell("failing", "echo value 1; echo no model; exit 3") +
                Shell("killed", "kill -KILL $$") + Shell("silent", "true") +
                Shell("words", "echo value 1.2.3; echo value -") +
                Shell("lonely", "echo value 1 {far} {reference}"));
  EXPECT_EQ(Reason("missing"), "no-such-scorer cannot be run: No such file or directory");
  EXPECT_EQ(Reason("failing"), "sh ended with exit code 3: no model");
  EXPECT_EQ(Reason("killed"), "sh was ended by signal 9 (Killed)");
  EXPECT_EQ(Reason("silent"), "nothing that sh has printed fits its pattern");
  EXPECT_EQ(Reason("words"), "nothing that sh has printed fits its pattern");
  EXPECT_EQ(Reason("lonely"), "no reference");
}

// Whether a process is there that has not been ended.
bool Lives(const std::string& pid) {
  const std::string status = ReadFile("/proc/" + pid + "/stat");
  return !status.empty() && status.find(") Z") == std::string::npos;
}

TEST_F(ScorerTest, ThatHangsIsEndedWithAllItHasStarted) {
  WriteTone("tone.wav", 16000);
  WriteUserFile(
      Shell("hanging", "sleep 1000 & echo $! >{folder}/pid; sleep 1000", "timeout_s = 2"));
  EXPECT_EQ(Reason("hanging"), "sh did not end within 2 s");
  std::string pid = ReadFile("config/audio_bench/pid");
  if (pid.empty()) return;  // Its time was up before it came so far.
  pid.pop_back();
  // The signal that ends the sleeper may take a moment.
  for (int i = 0; i < 6000 && Lives(pid); ++i) usleep(10000);
  EXPECT_FALSE(Lives(pid));
}

TEST_F(ScorerTest, WhatItLeavesRunningDoesNotKeepItsFigureBack) {
  WriteTone("tone.wav", 16000);
  WriteUserFile(Shell("early", "sleep 1000 & echo value 7"));
  EXPECT_EQ(Figure("early", {"tone.wav"})["value"], 7);
}

TEST_F(ScorerTest, IsDeclaredInASuiteToo) {
  WriteTone("tone.wav", 16000);
  WriteUserFile(Shell("mos", "echo value 1") + Shell("other", "echo value 2"));
  const auto suite = [](const std::string& score) {
    WriteFile("s.toml",
              "[[case]]\nid = \"a\"\nroutine = \"TestHPFProcess\"\n"
              "arguments = [\"in.wav\", \"out.wav\"]\nin = { \"in.wav\" = \"tone.wav\" }\n"
              "measures = [\"mos\", \"rms\", \"other\"]\n" +
                  Shell("mos", "echo value " + score, "higher_is_better = true"));
  };
  suite("4");
  const Finished first = Bench({"suite", "s.toml", "--out", "results"});
  EXPECT_EQ(first.exitCode, 0) << first.out << first.err;
  const json figures = ParseResults(ReadFile("results/results.json"))["cases"][0]["figures"];
  std::map<std::string, json> values;
  for (const json& each : figures) values[each["name"]] = each["value"];
  EXPECT_EQ(values["mos"], 4);  // The suite's own goes before the user's.
  EXPECT_EQ(values["other"], 2);
  EXPECT_TRUE(values["rms"].is_number());

  // Another scorer is another figure, and one that compare takes.
  std::filesystem::copy("results", "before", std::filesystem::copy_options::recursive);
  suite("3");
  const Finished again = Bench({"suite", "s.toml", "--out", "results", "--resume"});
  EXPECT_EQ(again.exitCode, 0) << again.out << again.err;
  const Finished compared = Bench({"compare", "before", "results"});
  EXPECT_EQ(compared.exitCode, 1) << compared.out;
  EXPECT_THAT(compared.out, testing::ContainsRegex("mos .*worse"));
}

TEST_F(ScorerTest, IsRefusedWithItsPlaceInTheFile) {
  WriteTone("tone.wav", 16000);
  const std::string path = std::filesystem::current_path() / "config/audio_bench/measures.toml:";
  const auto fault = [&](const std::string& text, const std::string& name = "mos") {
    WriteUserFile(text);
    const Finished finished = Bench({"measure", "tone.wav", "--measure", name});
    EXPECT_EQ(finished.exitCode, 2) << finished.out;
    const size_t at = finished.err.find(path);
    return at == std::string::npos ? finished.err : finished.err.substr(at + path.size());
  };
  const std::string start = "[measure.mos]\ncommand = [\"sh\"]\n";
  EXPECT_EQ(fault(start), "1:1: this measure is without its pattern\n");
  EXPECT_EQ(fault("[measure.mos]\npattern = '(.)'\n"),
            "1:1: this measure is without its command\n");
  EXPECT_EQ(fault(start + "pattern = 'a'\n"),
            "3:11: the pattern has no group () around the figure\n");
  EXPECT_EQ(fault(start + "pattern = '(a'\n"), "3:11: \"(a\" is no regular expression\n");
  EXPECT_THAT(fault(start + "pattern = '(a)'\nrates = [0]\n"),
              HasSubstr("4:10: rates must be a list of rates from 1 to 768000 Hz"));
  EXPECT_THAT(fault(start + "patern = '(a)'\n"), HasSubstr("did you mean \"pattern\"?"));
  EXPECT_EQ(fault("[measure.mos]\ncommand = [\"sh\", \"{outpt}\"]\npattern = '(a)'\n"),
            "2:18: {outpt} stands for nothing; did you mean {output}?\n");
  EXPECT_EQ(fault("[measure.rms]\ncommand = [\"sh\"]\npattern = '(a)'\n"),
            "1:10: rms is a measure of the bench itself\n");
  EXPECT_THAT(fault(Shell("mos", "true"), "moss"), HasSubstr("did you mean mos?"));
  // Who asks for no scorer needs no good file.
  EXPECT_EQ(Bench({"measure", "tone.wav", "--measure", "rms"}).exitCode, 0);
}

}  // namespace
