// What the words of a command line ask for, in the test's own process.

#include "cli/request.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "cli/staging_options.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Command = Request::Command;

Request Of(const std::vector<std::string>& words) { return ParseRequest(words); }

std::string Refusal(const std::vector<std::string>& words) {
  try {
    ParseRequest(words);
  } catch (const UsageError& error) {
    return error.message;
  }
  return "";
}

TEST(Request, LeavesARunAsItIsUsual) {
  const Request request = Of({"run"});
  EXPECT_EQ(request.command, Command::kRun);
  EXPECT_EQ(request.run.routine, "RunTestCase");
  EXPECT_THAT(request.run.arguments, IsEmpty());
  EXPECT_EQ(request.run.work, "bench_work");
  EXPECT_FALSE(request.run.timeout);
  EXPECT_FALSE(request.run.linger);
  EXPECT_EQ(request.run.json, "");
  EXPECT_FALSE(request.run.wait);
  EXPECT_FALSE(request.run.wav);
  EXPECT_FALSE(request.run.figures);
}

TEST(Request, TakesEachOptionOfARun) {
  EXPECT_EQ(Of({"run", "--work", "w"}).run.work, "w");
  EXPECT_EQ(Of({"run", "--timeout-s", "2.5"}).run.timeout, 2.5);
  EXPECT_EQ(Of({"run", "--linger-s=1000000"}).run.linger, 1e6);
  EXPECT_EQ(Of({"run", "--json", "-"}).run.json, "-");
  EXPECT_TRUE(Of({"run", "--wait"}).run.wait);
  EXPECT_TRUE(Of({"run", "--wav"}).run.wav);
  EXPECT_TRUE(Of({"run", "--figures"}).run.figures);
}

TEST(Request, TellsTheRoutineFromItsArguments) {
  const Request request = Of({"run", "Echo", "-1", "--wav", "-.5", "--", "--json", "--"});
  EXPECT_EQ(request.run.routine, "Echo");
  EXPECT_THAT(request.run.arguments, ElementsAre("-1", "-.5", "--json", "--"));
  EXPECT_TRUE(request.run.wav);
  EXPECT_EQ(request.run.json, "");
}

TEST(Request, TakesNoOtherNumberOfSeconds) {
  for (const std::string word : {"0", "-1", "x", "1x", "1000000.5", "nan", "inf"}) {
    EXPECT_THAT(Refusal({"run", "--timeout-s=" + word}),
                HasSubstr("not a number of seconds between 0 and 1000000: " + word));
  }
  EXPECT_THAT(Refusal({"run", "--linger-s=0"}), HasSubstr("not a number of seconds"));
}

TEST(Request, TakesWhatBecomesOfRecordings) {
  for (const char* const command : {"run", "stage"}) {
    const Case what =
        Of({command, "Copy", "--in", "a.wav", "--in", "b=c.wav", "--start", "0.5", "--seconds", "2",
            "--channels", "first", "--force", "--raw", "48000,2,s24"})
            .run;
    EXPECT_THAT(what.in, ElementsAre("a.wav", "b=c.wav"));
    EXPECT_EQ(what.wishes.cut.start, 0.5);
    EXPECT_EQ(what.wishes.cut.seconds, 2);
    EXPECT_EQ(what.wishes.channels, ChannelChoice::kFirst);
    EXPECT_TRUE(what.wishes.force);
    EXPECT_EQ(what.wishes.raw->rate, 48000);
    EXPECT_EQ(what.temporary, command == std::string("run"));
  }
  EXPECT_EQ(Of({"run", "--channels", "mean"}).run.wishes.channels, ChannelChoice::kMean);
  const Case usual = Of({"run", "Copy", "--start", "0"}).run;
  EXPECT_TRUE(usual.wishes.cut.Whole());
  EXPECT_FALSE(usual.wishes.channels);
  EXPECT_FALSE(usual.wishes.raw);
  EXPECT_FALSE(usual.wishes.force);
  EXPECT_FALSE(usual.temporary);
  EXPECT_FALSE(Of({"run", "Copy", "--in", "a.wav", "--work", "w"}).run.temporary);
}

TEST(ParseRawForm, TakesARateChannelsAndAType) {
  using Samples = RawForm::Samples;
  for (const auto& [word, samples] :
       {std::pair("s16", Samples::kS16), std::pair("s24", Samples::kS24),
        std::pair("s32", Samples::kS32), std::pair("f32", Samples::kF32)}) {
    const auto raw = ParseRawForm(std::string("1,64,") + word);
    ASSERT_TRUE(raw) << word;
    EXPECT_EQ(raw->rate, 1);
    EXPECT_EQ(raw->channels, 64);
    EXPECT_EQ(raw->samples, samples) << word;
  }
  EXPECT_EQ(ParseRawForm("768000,1,s16")->rate, 768000);
  EXPECT_EQ(RawFormProblem("8000,1,s16"), "");
}

TEST(ParseRawForm, TakesNothingElse) {
  for (const char* const word :
       {"", "8000", "8000,1", "8000,1,", "8000,1,s8", "8000,1,S16", "8000,1,s16,", "8000,1,s161",
        "8000,,s16", ",1,s16", "0,1,s16", "-1,1,s16", "768001,1,s16", "8000,0,s16", "8000,65,s16",
        "8e3,1,s16", "8000;1,s16", "99999999999,1,s16", " 8000,1,s16"}) {
    EXPECT_FALSE(ParseRawForm(word)) << word;
    EXPECT_EQ(RawFormProblem(word), std::string("not RATE,CHANNELS,s16|s24|s32|f32: ") + word);
  }
}

TEST(Request, TellsTheOtherCommandsApart) {
  Request request = Of({"list"});
  EXPECT_EQ(request.command, Command::kList);
  EXPECT_EQ(request.form, Request::Form::kText);
  EXPECT_EQ(request.filter.glob, "");
  EXPECT_EQ(request.filter.group, "");
  EXPECT_FALSE(request.filter.available);
  request = Of({"list", "--available", "--group", "aec", "--json", "Test*"});
  EXPECT_EQ(request.form, Request::Form::kJson);
  EXPECT_EQ(request.filter.glob, "Test*");
  EXPECT_EQ(request.filter.group, "aec");
  EXPECT_TRUE(request.filter.available);
  EXPECT_EQ(Of({"list", "--markdown"}).form, Request::Form::kMarkdown);
  request = Of({"describe", "Echo"});
  EXPECT_EQ(request.command, Command::kDescribe);
  EXPECT_EQ(request.routine, "Echo");
  request = Of({"demo", "--work", "w"});
  EXPECT_EQ(request.command, Command::kDemo);
  EXPECT_EQ(request.run.work, "w");
}

TEST(Request, HasACommandForEachName) {
  const std::vector<std::pair<std::vector<std::string>, Command>> all = {
      {{"replay", "r.json"}, Command::kReplay},
      {{"measure", "a.wav"}, Command::kMeasure},
      {{"baseline", "list"}, Command::kBaseline},
      {{"selftest"}, Command::kSelftest},
      {{"controls"}, Command::kControls},
      {{"report", "r", "--out", "p.html"}, Command::kReportPage},
      {{"demo", "--all"}, Command::kDemoAll},
      {{"manual"}, Command::kPrint}};
  for (const auto& [words, command] : all) {
    EXPECT_EQ(Refusal(words), "");
    EXPECT_EQ(Of(words).command, command) << words[0];
  }
}

TEST(Request, GivesASuiteOfBenchesTheWordsAfterTheMark) {
  const Request request = Of({"compare", "--bench", "a", "s.toml", "--", "good", "-j", "2"});
  EXPECT_EQ(request.command, Command::kCompare);
  EXPECT_THAT(request.compare.suite, ElementsAre("s.toml", "good", "-j", "2"));
  EXPECT_EQ(Refusal({"compare", "a", "b", "--", "x"}), "unexpected x");
}

TEST(Request, SaysWhichCommandIsMeant) {
  EXPECT_EQ(Refusal({"lst"}), "no command is called \"lst\"; did you mean list?");
  EXPECT_EQ(Refusal({"WritePcm"}), "no command is called \"WritePcm\"; did you mean run WritePcm?");
  EXPECT_EQ(Refusal({"xyzzyxyzzy"}),
            "no command is called \"xyzzyxyzzy\"; \"audio_bench help\" names them all");
}

TEST(Request, SaysWhatIsWrong) {
  EXPECT_EQ(Refusal({"list", "--", "x"}), "unexpected x");
  EXPECT_EQ(Refusal({"run", "--bogus"}), "unknown option --bogus");
  EXPECT_EQ(Refusal({"run", "--wrok=x"}), "unknown option --wrok=x; did you mean --work?");
  EXPECT_EQ(Refusal({"run", "--ou", "x"}), "unknown option --ou; did you mean --out?");
  EXPECT_EQ(Refusal({"list", "--wrok"}), "unknown option --wrok") << "not an option of list";
  EXPECT_EQ(Refusal({"run", "--work", ""}), "--work is empty");
  EXPECT_EQ(Refusal({"run", "--work"}), "--work is without its DIR");
  EXPECT_EQ(Refusal({"list", "--group"}), "--group is without its G");
  EXPECT_THAT(Refusal({"describe"}), HasSubstr(" (audio_bench describe --help)"));
  EXPECT_THAT(Refusal({}), HasSubstr(" (audio_bench --help)"));
  EXPECT_THAT(Refusal({"list", "--json", "--markdown"}), HasSubstr("xcludes"));
}

TEST(Request, NamesEveryReportThatARefusedRunAsksFor) {
  try {
    Of({"run", "--json", "a", "--bogus", "--json=b"});
    FAIL();
  } catch (const RefusedRequest& refused) {
    EXPECT_THAT(refused.reports, ElementsAre("a", "b"));
  }
  EXPECT_EQ(Refusal({"list", "--bogus"}), "unknown option --bogus");
}

// How the help is laid out is not ours.
TEST(Request, ExplainsEachOption) {
  const std::string run = Of({"run", "--help"}).text;
  for (const char* const words :
       {"Run one routine in a process of its own",
        "\nUsage: audio_bench run [ROUTINE [ARGUMENT...]] [OPTIONS]\n",
        " Workspace: all files of the routine are in this folder",
        " End a run that takes longer, in seconds (600; a routine that never returns is stopped "
        "after 10)",
        " How long a player may run on after its routine has returned (describe says what is "
        "usual)",
        " Also write the report to this file; - is stdout",
        " Wait for the end of another run in the workspace", " Also measure the files of lists",
        " Also write headerless audio outputs as NAME.wav, 16-bit",
        "\nWithout a routine: the selected test (RunTestCase). Arguments are one word each, in "
        "the\n"
        "declared order; after \"--\" every word is an argument."}) {
    EXPECT_THAT(run, HasSubstr(words));
  }
  const std::string list = Of({"help", "list"}).text;
  for (const char* const words :
       {"The catalogue of all routines, or of some", " Only names like this: 'Test*Reverb*'",
        " Only routines that can be run", " Only this group", " For programs", " As a document"}) {
    EXPECT_THAT(list, HasSubstr(words));
  }
  const std::string all = Of({"--help"}).text;
  for (const char* const words :
       {"Runs the routines of the audio engine's test bench.", " All that is known of one routine",
        " Put a recording in place for the selected test, if there is none",
        " Prove the measures on signals that theory knows\n", " Print the manual page, in roff\n",
        " Help on a command\n", "Exit codes: 0 pass, 1 fail, 2 "}) {
    EXPECT_THAT(all, HasSubstr(words));
  }
}

}  // namespace
}  // namespace host
