// The calls of a crash as text, and what is noted of them, in the test's own process.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "process/crash_stack.h"

namespace host {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

// A return address in CrashStack, and one in NoteCrashes.
void* InStack() { return reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(&CrashStack) + 1); }
void* InNote() { return reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(&NoteCrashes) + 1); }

std::unique_ptr<CrashCalls> Noted(const std::vector<void*>& calls) {
  auto noted = std::make_unique<CrashCalls>();
  std::copy(calls.begin(), calls.end(), noted->calls.begin());
  noted->count = calls.size();
  return noted;
}

std::ptrdiff_t Lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST(CrashText, HasALineForEachFunction) {
  const std::string text = CrashStack(*Noted({InStack(), InNote()}));
  EXPECT_THAT(text, ContainsRegex("^  #0  host::CrashStack.*\n  #1  host::NoteCrashes.*\n$"));
  EXPECT_EQ(Lines(text), 2);
  EXPECT_THAT(text, Not(HasSubstr("times")));
  EXPECT_EQ(CrashStack(*Noted({})), "");
}

TEST(CrashText, CountsTheCallsOfAFunctionByItself) {
  const std::string text = CrashStack(*Noted({InStack(), InStack(), InNote()}));
  EXPECT_THAT(text, ContainsRegex("^  #0  host::CrashStack.*  \\(2 times\\)\n  #2  host::Note"));
  EXPECT_EQ(Lines(text), 2);
}

TEST(CrashText, TakesNoMoreCallsThanThereIsRoomFor) {
  const auto noted = Noted(std::vector<void*>(CrashCalls::kMax, InStack()));
  noted->count = CrashCalls::kMax + 50;
  const std::string text = CrashStack(*noted);
  EXPECT_THAT(text, HasSubstr("  (256 times)\n"));
  EXPECT_EQ(Lines(text), 1);
}

TEST(CrashText, LeavesOutWhatNotedTheCrash) {
  const auto start = reinterpret_cast<uintptr_t>(&NoteCrashes);
  const auto noted = Noted({InStack(), reinterpret_cast<void*>(start), InStack()});
  noted->at = start;
  EXPECT_THAT(CrashStack(*noted),
              ContainsRegex("^  #0  host::NoteCrashes.*\n  #1  host::CrashStack.*\n$"));
}

TEST(CrashText, KeepsAllCallsWhereThePlaceOfTheCrashIsNotKnown) {
  EXPECT_EQ(Lines(CrashStack(*Noted({InStack(), nullptr}))), 2) << "no call is the crash";
}

TEST(NoteCrashes, LeavesAloneTheSignalsThatSomebodyElseHandles) {
  const pid_t child = fork();
  if (child == 0) {
    const auto handle = [](int) {};
    signal(SIGTRAP, handle);
    signal(SIGSYS, SIG_DFL);
    static CrashCalls calls;
    NoteCrashes(&calls);
    struct sigaction handled = {};
    struct sigaction unhandled = {};
    sigaction(SIGTRAP, nullptr, &handled);
    sigaction(SIGSYS, nullptr, &unhandled);
    const bool kept = handled.sa_handler == static_cast<void (*)(int)>(handle);
    const bool noting = (unhandled.sa_flags & SA_ONSTACK) != 0;
    _exit((kept ? 0 : 1) + (noting ? 0 : 2));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "exit status 1: taken from its handler; 2: not noted";
}

}  // namespace
}  // namespace host
