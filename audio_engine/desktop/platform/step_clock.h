#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// The time by which the null device, tickers and sleeps go: the machine's, or that of a StepClock.

namespace desktop {

using Time = std::chrono::steady_clock::time_point;

Time Now();

// A thread of the engine, for whose work a StepClock waits. Throws what std::thread throws.
std::thread StartThread(std::function<void()> body);

// For tests: while it lives it takes the place of the machine's clock. It stands still while a
// thread of the engine works, and goes on to the next time that one waits for once all of them
// wait. So nothing of the engine is ever late, however busy the machine is, and waiting takes no
// time. The thread that makes it takes part as those of the engine do: time passes in its SleepMs.
// Nothing of the engine runs when it is made and when it ends; there is one at a time.
class StepClock {
 public:
  StepClock();
  ~StepClock();
  StepClock(const StepClock&) = delete;
  StepClock& operator=(const StepClock&) = delete;

  // Null while the machine's clock counts.
  static StepClock* Current();

  Time Now();

  // The calling thread, or one that is about to start, works; or does so no more.
  void Enter();
  void Leave();

  // What one thread at a time waits on.
  struct Waiter {
    int posts = 0;  // That nobody has waited for yet.
    bool waits = false;
    Time until;
    std::condition_variable released;
  };

  // Waits for one Post, or until a time.
  void Wait(Waiter& waiter, Time until);
  void Post(Waiter& waiter);

 private:
  void Release(Waiter& waiter);
  void StopWork();

  std::mutex m_mutex;
  Time m_now;
  int m_working = 0;               // Threads.
  std::vector<Waiter*> m_waiters;  // First come first.
};

}  // namespace desktop
