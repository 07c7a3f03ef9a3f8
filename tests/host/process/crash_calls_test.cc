// What is noted of a crash, and what the log makes of it, without any.

#include "process/crash_calls.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "process/crash_stack.h"
#include "support/child_process.h"

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

using Function = int (*)(int);

// Each does something else, so that the linker does not make one of them.
__attribute__((noinline)) int Outer(int value) { return value + 1; }
__attribute__((noinline)) int Middle(int value) { return value * 3; }
__attribute__((noinline)) int Inner(int value) { return value - 7; }

// Return addresses: one byte into a function.
void Note(std::initializer_list<Function> functions,
          std::array<void*, host::CrashCalls::kMax>& to) {
  std::transform(functions.begin(), functions.end(), to.begin(), [](Function function) {
    return reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(function) + 1);
  });
}

std::string StackOf(std::initializer_list<Function> calls, uintptr_t at = 0,
                    std::initializer_list<Function> before = {}) {
  const auto noted = std::make_unique<host::CrashCalls>();
  Note(calls, noted->calls);
  noted->count = calls.size();
  Note(before, noted->before);
  noted->countBefore = before.size();
  noted->at = at;
  return host::CrashStack(*noted);
}

// A line of a stack.
std::string Line(const std::string& number, const std::string& function,
                 const std::string& times = "") {
  return "  #" + number + "  [^\n]*" + function + "\\(int\\)[^\n]*\\+0x[0-9a-f]+" + times + "\n";
}

TEST(CrashStack, HasALineForEachFunctionInTurn) {
  EXPECT_THAT(StackOf({Inner, Middle, Outer}),
              MatchesRegex(Line("0", "Inner") + Line("1", "Middle") + Line("2", "Outer")));
}

TEST(CrashStack, CountsCallsInARow) {
  EXPECT_THAT(StackOf({Inner, Middle, Middle, Outer, Inner, Inner, Inner}),
              MatchesRegex(Line("0", "Inner") + Line("1", "Middle", "  \\(2 times\\)") +
                           Line("3", "Outer") + Line("4", "Inner", "  \\(3 times\\)")));
}

TEST(CrashStack, BeginsWhereItCrashed) {
  const auto at = reinterpret_cast<uintptr_t>(&Middle) + 1;
  EXPECT_THAT(StackOf({Inner, Middle, Outer}, at),
              MatchesRegex(Line("0", "Middle") + Line("1", "Outer")));
}

// A function that ends with a call returns to where the next one starts.
TEST(CrashStack, MeansTheCallBeforeAReturnAddress) {
  const auto noted = std::make_unique<host::CrashCalls>();
  noted->calls[0] = reinterpret_cast<void*>(&Middle);
  noted->count = 1;
  EXPECT_THAT(host::CrashStack(*noted), Not(HasSubstr("Middle")));
}

TEST(CrashStack, EndsBeforeTheCallsThatWereThereBefore) {
  EXPECT_THAT(StackOf({Inner, Middle, Outer, Outer}, 0, {Middle, Outer, Outer}),
              MatchesRegex(Line("0", "Inner")));
  EXPECT_EQ(StackOf({Middle, Outer}, 0, {Middle, Outer}), "");
}

TEST(CrashStack, TakesNoMoreCallsThanThereIsRoomFor) {
  const auto noted = std::make_unique<host::CrashCalls>();
  noted->calls.fill(reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(&Middle) + 1));
  noted->count = host::CrashCalls::kMax + 50;
  EXPECT_THAT(host::CrashStack(*noted), MatchesRegex(Line("0", "Middle", "  \\(256 times\\)")));
}

TEST(CrashStack, KeepsAllCallsWhereThePlaceOfTheCrashIsNotKnown) {
  const auto noted = std::make_unique<host::CrashCalls>();
  noted->calls[0] = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(&Middle) + 1);
  noted->count = 2;
  EXPECT_THAT(host::CrashStack(*noted), MatchesRegex(Line("0", "Middle") + "  #1  [^\n]*\n"))
      << "no call is the crash";
}

void Ignore(int /*number*/) {}

TEST(NoteCrashes, LeavesAloneWhatSomebodyElseHandles) {
  const int status = RunInChild([] {
    signal(SIGSEGV, SIG_DFL);  // A sanitizer's.
    signal(SIGFPE, Ignore);
    signal(SIGILL, SIG_IGN);
    static host::CrashCalls calls;
    host::NoteCrashes(&calls);
    struct sigaction now[3] = {};
    sigaction(SIGSEGV, nullptr, &now[0]);
    sigaction(SIGFPE, nullptr, &now[1]);
    sigaction(SIGILL, nullptr, &now[2]);
    const bool notes = (now[0].sa_flags & (SA_SIGINFO | SA_ONSTACK)) == (SA_SIGINFO | SA_ONSTACK);
    const bool leaves = now[1].sa_handler == Ignore && now[2].sa_handler == SIG_IGN;
    _exit((notes ? 0 : 1) + (leaves ? 0 : 2));
  });
  EXPECT_EQ(status, 0);
}

}  // namespace
