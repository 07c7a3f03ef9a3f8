#include "report/verdict.h"

#include <gmock/gmock.h>

#include <string>

namespace host {
namespace {

using testing::StrEq;

struct Expected {
  Cause cause;
  const char* name;
  const char* verdict;
  int exitCode;
};

// From the least to the worst.
const Expected kExpected[] = {{Cause::kGuardWarning, "guard_warning", "warn", 0},
                              {Cause::kReferenceUnreadable, "reference_unreadable", "warn", 0},
                              {Cause::kInputAsItIs, "input_as_it_is", "warn", 0},
                              {Cause::kInputNotWhole, "input_not_whole", "warn", 0},
                              {Cause::kNotDelivered, "not_delivered", "error", 2},
                              {Cause::kNotRunnable, "not_runnable", "skip", 77},
                              {Cause::kLogIncomplete, "log_incomplete", "error", 2},
                              {Cause::kGuard, "guard", "fail", 1},
                              {Cause::kCopyFailed, "copy_failed", "fail", 1},
                              {Cause::kSamplesNotFinite, "samples_not_finite", "fail", 1},
                              {Cause::kOutputNotMeasured, "output_not_measured", "fail", 1},
                              {Cause::kOutputChanged, "output_changed", "fail", 1},
                              {Cause::kOutputUnreadable, "output_unreadable", "fail", 1},
                              {Cause::kOutputNotWhole, "output_not_whole", "fail", 1},
                              {Cause::kOutputFormat, "output_format", "fail", 1},
                              {Cause::kOutputEmpty, "output_empty", "fail", 1},
                              {Cause::kOutputStale, "output_stale", "fail", 1},
                              {Cause::kOutputAbsent, "output_absent", "fail", 1},
                              {Cause::kWriteError, "write_error", "fail", 1},
                              {Cause::kInputFormat, "input_format", "fail", 1},
                              {Cause::kInputTooShort, "input_too_short", "fail", 1},
                              {Cause::kArgument, "argument", "fail", 1},
                              {Cause::kInputChanged, "input_changed", "error", 3},
                              {Cause::kReadError, "read_error", "error", 3},
                              {Cause::kUnreadableInput, "unreadable_input", "error", 3},
                              {Cause::kMissingInput, "missing_input", "error", 3},
                              {Cause::kTimeout, "timeout", "error", 4},
                              {Cause::kCrash, "crash", "error", 4},
                              {Cause::kInterrupted, "interrupted", "error", 128 + 15},
                              {Cause::kUsage, "usage", "error", 2},
                              {Cause::kUnfinished, "unfinished", "error", 2}};

TEST(Verdict, FollowsFromTheCause) {
  for (const auto& [cause, name, verdict, exitCode] : kExpected) {
    const Judgement judgement = Judge({{cause, "why", 15}});
    EXPECT_STREQ(CauseName(cause), name);
    EXPECT_THAT(VerdictName(judgement.verdict), StrEq(verdict)) << name;
    EXPECT_EQ(judgement.exitCode, exitCode) << name;
    EXPECT_EQ(judgement.reason, "why");
  }
  EXPECT_STREQ(VerdictName(Judge({}).verdict), "pass");
  EXPECT_EQ(Judge({}).exitCode, 0);
}

TEST(Verdict, IsThatOfTheWorstCause) {
  for (size_t worse = 1; worse < std::size(kExpected); ++worse) {
    const Judgement judgement =
        Judge({{kExpected[worse].cause, "worse"}, {kExpected[worse - 1].cause, "better"}});
    EXPECT_EQ(judgement.reason, "worse, and 1 more problem") << kExpected[worse].name;
    EXPECT_THAT(VerdictName(judgement.verdict), StrEq(kExpected[worse].verdict));
  }
}

}  // namespace
}  // namespace host
