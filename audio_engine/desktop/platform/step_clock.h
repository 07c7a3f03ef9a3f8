#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// The clock of the null device, of tickers and of sleeps: the machine's, or a StepClock, whose time
// jumps from event to event as in a discrete-event simulation.

namespace desktop {

using Time = std::chrono::steady_clock::time_point;

Time Now();

// A thread of the engine, for whose work a StepClock waits. Throws what std::thread throws.
std::thread StartThread(std::function<void()> body);

// For tests: while it lives it takes the place of the machine's clock. It stands still while a
// thread of the engine works; once all of them wait it goes on to the earliest time that one waits
// for. So nothing of the engine is ever late, however busy the machine is, and waiting takes no
// time. The thread that makes it takes part as those of the engine do: time passes in its SleepMs.
// Nothing of the engine may run when it is made or destroyed, and there is one at a time.
class StepClock {
 public:
  StepClock();
  ~StepClock();
  StepClock(const StepClock&) = delete;
  StepClock& operator=(const StepClock&) = delete;

  // Returns null while the machine's clock counts.
  static StepClock* Current();

  Time Now();

  // Tells that the calling thread, or one that is about to start, works, or that it has ended.
  void Enter();
  void Leave();

  // One thread at a time waits on it.
  struct Waiter {
    // Posts that nobody has waited for yet.
    int posts = 0;
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
  // How many threads work.
  int m_working = 0;
  // In the order in which they came.
  std::vector<Waiter*> m_waiters;
};

}  // namespace desktop
