#include "process/crash_calls.h"

#include <execinfo.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <csignal>

namespace host {

namespace {

constexpr int kCrashes[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS};
constexpr size_t kStackBytes = 1 << 17;

CrashCalls* g_calls = nullptr;
pid_t g_process = 0;

uintptr_t InstructionOf(const void* context) {
  const auto* const state = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
  return static_cast<uintptr_t>(state->uc_mcontext.gregs[REG_RIP]);
#elif defined(__aarch64__)
  return state->uc_mcontext.pc;
#else
  static_cast<void>(state);
  return 0;
#endif
}

void OnCrash(int number, siginfo_t* /*info*/, void* context) {
  if (getpid() == g_process && !g_calls->taken.exchange(true)) {
    g_calls->at = InstructionOf(context);
    const int count = backtrace(g_calls->calls.data(), CrashCalls::kMax);
    g_calls->count = static_cast<size_t>(count > 0 ? count : 0);
  }
  // It waits until this function returns, then ends the process.
  signal(number, SIG_DFL);
  raise(number);
}

// A stack of its own, for a crash for want of stack. It lies above a page that nobody may touch and
// lives as long as the process.
void UseOtherStack() {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, kStackBytes + page, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (memory == MAP_FAILED) return;
  mprotect(memory, page, PROT_NONE);
  stack_t stack = {};
  stack.ss_sp = static_cast<char*>(memory) + page;
  stack.ss_size = kStackBytes;
  sigaltstack(&stack, nullptr);
}

}  // namespace

void NoteCrashes(CrashCalls* calls) {
  g_calls = calls;
  g_process = getpid();
  // The first call loads a library, which a handler may not.
  const int count = backtrace(calls->before.data(), CrashCalls::kMax);
  calls->countBefore = static_cast<size_t>(count > 0 ? count : 0);
  UseOtherStack();
  for (const int number : kCrashes) {
    struct sigaction now = {};
    sigaction(number, nullptr, &now);
    const bool handled = (now.sa_flags & SA_SIGINFO) != 0 || now.sa_handler != SIG_DFL;
    if (handled) continue;
    struct sigaction noting = {};
    noting.sa_sigaction = OnCrash;
    noting.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&noting.sa_mask);
    sigaction(number, &noting, nullptr);
  }
}

}  // namespace host
