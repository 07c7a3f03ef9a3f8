// Limits of time, of the caller and of the machine end in a verdict.

#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>

#include "run/run_fixture.h"

namespace {

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

double SecondsOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(RunTest, TheTimeLimitCoversMeasuring) {
  Finished run;
  const double seconds = SecondsOf([&] {
    run = Run({"WriteHugeFloats", "60000", "--wav", "--timeout-s", "0.5", "--json", "report.json"});
  });
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out, HasSubstr("timed out after 0.50 s while measuring its files"));
  EXPECT_LT(seconds, 3);
  EXPECT_EQ(json::parse(ReadFile("report.json"))["exit_code"], 4);
}

TEST_F(RunTest, AnInterruptionCoversMeasuring) {
  Process process(Command({"WriteHugeFloats", "60000"}));
  while (ReadFile("bench_work/logs/WriteHugeFloats.log").empty()) usleep(1000);
  usleep(300000);
  kill(process.pid(), SIGINT);
  Finished run;
  EXPECT_LT(SecondsOf([&] { run = process.Wait(); }), 3);
  EXPECT_EQ(run.exitCode, 128 + SIGINT);
  EXPECT_THAT(run.out, HasSubstr("interrupted (Interrupt) while measuring its files"));
}

TEST_F(RunTest, AFileThatMayNotGrowIsAVerdict) {
  // What this program collects in a file has to come out of a pipe.
  const Finished run = RunProcess({"/bin/sh", "-c",
                                   std::string("{ (ulimit -f 0; exec '") + AUDIO_BENCH_PROBE +
                                       "' run WritePcm); echo \"exit code $?\"; } | cat"});
  EXPECT_THAT(run.out, HasSubstr("exit code 1\n"));
  EXPECT_THAT(run.out, HasSubstr("out.pcm could not be written whole: File too large"));
}

TEST_F(RunTest, FewDescriptorsAreAVerdict) {
  for (int count = 4; count < 24; ++count) {
    const Finished run = RunAfter("ulimit -n " + std::to_string(count), "WritePcm");
    if (run.exitCode == 127) continue;  // The program cannot even be loaded.
    // A sanitizer looks at objects through a pipe, and takes them for broken where there is none.
    if (kSanitized && run.out.empty()) continue;
    EXPECT_THAT(run.exitCode, AnyOf(0, 1, 2)) << count << run.out << run.err;
    if (run.exitCode == 2) {
      EXPECT_THAT(run.err, HasSubstr("audio_bench: ")) << count;
    }
    if (run.exitCode == 1) {
      EXPECT_THAT(run.out, HasSubstr("Too many open files")) << count;
    }
  }
}

TEST_F(RunTest, LittleMemoryIsAVerdict) {
  if (kSanitized) GTEST_SKIP() << "a sanitizer needs all the address space";
  Finished run = RunAfter("ulimit -v 400000", "Allocate");
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_THAT(run.out, HasSubstr("killed by signal 6"));
  for (int kilobytes = 8000; kilobytes < 40000; kilobytes += 500) {
    run = RunAfter("ulimit -v " + std::to_string(kilobytes), "WritePcm");
    if (run.exitCode == 127 || run.out.empty()) continue;  // As above.
    EXPECT_THAT(run.exitCode, AnyOf(0, 1, 2, 4)) << kilobytes << run.out << run.err;
  }
}

}  // namespace
