#include "contract/routines/routine_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <utility>

#include "bench/aec/routines.h"
#include "contract/routines/routine_inputs.h"
#include "fake_engine/fake_engine.h"
#include "support/captured_stderr.h"
#include "support/temporary_directory.h"

using harness::CatalogueRow;

// What the leak check of the address sanitizer passes over: the first one never frees its buffer on
// purpose, the second one is left by an exception where it would wait for ever.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
  return "leak:TestAACStreamToAAC\nleak:TestKaraokeFileMixer\n";
}

namespace {

struct Ended {};

// Standard output goes where standard error goes while this object lives.
class StdoutToStderr {
 public:
  StdoutToStderr() {
    fflush(stdout);
    m_before = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    dup2(STDERR_FILENO, STDOUT_FILENO);
  }
  ~StdoutToStderr() {
    fflush(stdout);
    dup2(m_before, STDOUT_FILENO);
    close(m_before);
  }
  StdoutToStderr(const StdoutToStderr&) = delete;
  StdoutToStderr& operator=(const StdoutToStderr&) = delete;

 private:
  int m_before;
};

void Call(const CatalogueRow& row, FakeEngine& engine) {
  int sleeps = 0;
  engine.onSleep = [&sleeps] {
    if (++sleeps == 20) throw Ended();
  };
  try {
    const std::vector<std::string_view> words = WordsOf(row);
    harness::Run(row, words);
  } catch (const Ended&) {
    engine.calls.push_back("goes on for ever");
  } catch (const std::exception& thrown) {
    engine.calls.push_back("throws " + std::string(thrown.what()));
  }
}

// One routine opens a file in the first run of the process only. That run comes ahead of all
// others, so that these are alike.
bool OpenWhatIsOpenedOnce() {
  FakeEngine engine;
  TestSoftAec();
  return true;
}

void Prepare(FakeEngine& engine, const CatalogueRow& row, Situation situation) {
  SetAnswers(engine);
  if (situation != Situation::kNoInputs) PutInputs(engine, row);
  if (situation == Situation::kOperationsFail) engine.failing = FakeEngine::Failing::kOperations;
  if (situation == Situation::kEverythingFails) engine.failing = FakeEngine::Failing::kEverything;
  engine.diskFull = situation == Situation::kDiskFull;
  if (situation != Situation::kOutputsUnwritable) return;
  for (const std::string& name : OutputsOf(row)) engine.unwritable.insert(name);
}

// Runs the routine with what has been prepared.
RoutineRun Run(const CatalogueRow& row, FakeEngine& engine) {
  const TemporaryDirectory folder;
  RoutineRun run;
  run.declared = OutputsOf(row);
  std::sort(run.declared.begin(), run.declared.end());
  const auto before = engine.files;
  engine.calls.clear();  // What the catalogue has asked for.
  {
    const CapturedStderr captured;
    const StdoutToStderr joined;
    Call(row, engine);
    fflush(stdout);
    run.output = captured.Text();
  }
  run.calls = engine.calls;
  run.printed = engine.printed;
  for (const auto& [name, bytes] : engine.files) {
    const auto found = before.find(name);
    if (found == before.end() || found->second != bytes) run.written.push_back(name);
  }
  run.cameBack = std::filesystem::current_path() == std::filesystem::canonical(folder.path());
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
    run.strays.push_back(entry.path().filename());
  }
  return run;
}

}  // namespace

RoutineRun RunRoutine(const CatalogueRow& row, Situation situation) {
  static const bool opened = OpenWhatIsOpenedOnce();
  static_cast<void>(opened);
  FakeEngine engine;
  Prepare(engine, row, situation);
  return Run(row, engine);
}

RoutineRun RunRoutineOn(const CatalogueRow& row, int rate, int channels) {
  FakeEngine engine;
  Prepare(engine, row, Situation::kNoInputs);
  PutInputs(engine, row,
            {.channels = static_cast<uint16_t>(channels), .rate = static_cast<uint32_t>(rate)});
  return Run(row, engine);
}

std::vector<std::string> Said(const RoutineRun& run) {
  std::vector<std::string> said;
  for (const std::string& call : run.calls) {
    for (const char* const voice :
         {"printf(", "puts(", "putchar(", "OutputDebugInfo(", "goes on ", "throws ",
          "fwrite(stdout", "fprintf(stdout", "fputs(stdout", "fputc(stdout"}) {
      if (call.rfind(voice, 0) == 0) said.push_back(call);
    }
  }
  return said;
}

std::vector<std::string> Counted(const std::vector<std::string>& lines) {
  std::map<std::string, int> counts;
  for (const std::string& line : lines) ++counts[line];
  std::vector<std::string> counted;
  for (const std::string& line : lines) {
    const int count = std::exchange(counts[line], 0);
    if (count > 1) counted.push_back(std::to_string(count) + " x " + line);
    if (count == 1) counted.push_back(line);
  }
  return counted;
}
