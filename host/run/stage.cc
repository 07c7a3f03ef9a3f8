#include "run/stage.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>
#include <system_error>
#include <utility>

#include "base/usage_error.h"
#include "recording/stage.h"
#include "run/inputs.h"
#include "run/listed_sources.h"
#include "run/stage_form.h"
#include "run/stopped.h"

namespace host {

namespace {

// Of a list: each file is open while it is staged.
constexpr size_t kMaxAtOnce = 64;

constexpr const char* kDuring = "staging its inputs";

// Adds the inputs that the first one lists: the text that is to be staged, that of a folder, or
// that which stands in its place already.
void AddListed(const Plan& plan, const std::function<void()>& goOn, std::vector<FilePlace>& inputs,
               std::vector<NamedFile>& sources) {
  FilePlace list = plan.inputs.front();
  for (const std::string& folder : plan.sources.folders) {
    if (!sources.empty()) break;
    const std::string path = FindFile(folder, list, goOn);
    if (!path.empty()) sources.push_back({0, path});
  }
  if (!sources.empty()) list.path = sources.front().path;
  const ListedInputs listed = ReadListedInputs(*plan.row, plan.Words(), plan.what.work, list, goOn);
  if (listed.problem) throw Ended{*listed.problem};
  std::set<std::string> places;
  for (FilePlace place : listed.places) {
    place.use.pattern = place.use.name;
    if (places.insert(place.place).second) inputs.push_back(std::move(place));
  }
}

// The recordings for inputs, those that stand alone first, because they may be one group.
std::vector<StageInput> Inputs(const Plan& plan, Limits& limits) {
  const auto goOn = [&] { EndAtLimits(limits, plan.timeout, kDuring); };
  std::vector<FilePlace> all = plan.inputs;
  std::vector<NamedFile> sources = plan.sources.files;
  if (!plan.sources.folders.empty() && plan.row->listed != nullptr) {
    AddListed(plan, goOn, all, sources);
  }
  for (const std::string& folder : plan.sources.folders) {
    const std::vector<NamedFile> found = FindListed(folder, all, goOn);
    sources.insert(sources.end(), found.begin(), found.end());
  }
  const bool paired = std::any_of(plan.inputs.begin(), plan.inputs.end(),
                                  [](const FilePlace& input) { return input.use.withFirst; });
  std::vector<StageInput> inputs;
  for (const NamedFile& source : sources) {
    const FilePlace& input = all[source.index];
    if (input.path.empty()) throw UsageError{"input " + input.name + " leads out of the workspace"};
    const bool grouped = input.use.withFirst || (paired && source.index == 0);
    inputs.push_back({.source = source.path,
                      .place = input.place,
                      .form = FormOf(input.use),
                      .group = grouped ? 1 : 0});
  }
  return inputs;
}

// What a fault makes of a run.
void Throw(const RecordingFault& fault, const Plan& plan, const Limits& limits) {
  if (fault.kind == RecordingFault::Kind::kStopped) {
    throw Ended{Stopped(limits, plan.timeout, kDuring)};
  }
  if (fault.kind == RecordingFault::Kind::kInput) {
    throw Ended{{Cause::kUnreadableInput, fault.text}};
  }
  throw UsageError{fault.text};
}

void PutInputs(const Plan& plan, Limits& limits, Staged& staged) {
  const std::vector<StageInput> inputs = Inputs(plan, limits);
  if (inputs.empty()) return;
  CreateFolder(plan.what.work);
  if (staged.lock == nullptr) staged.lock = LockWorkspace(plan, limits);
  for (size_t at = 0; at < inputs.size(); at += kMaxAtOnce) {
    const size_t count = std::min(kMaxAtOnce, inputs.size() - at);
    Staging made =
        StageRecordings(plan.what.work, std::span(inputs).subspan(at, count), plan.what.wishes,
                        [&] { return limits.Check() == Limits::Stop::kNone; });
    if (made.fault) Throw(*made.fault, plan, limits);
    std::move(made.files.begin(), made.files.end(), std::back_inserter(staged.files));
  }
  // The time of the run is the routine's.
  limits.Restart(plan.timeout);
}

}  // namespace

void CreateFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return;
  throw UsageError{"cannot create the folder " + path + ": " +
                   (error ? error.message() : strerror(ENOTDIR))};
}

Staged Stage(const Plan& plan, Limits& limits) {
  Staged staged = {.stop = plan.stop};
  StopWhereFailing(staged.stop, [&] {
    std::error_code error;
    const bool there = std::filesystem::is_directory(plan.what.work, error);
    if (there) staged.lock = LockWorkspace(plan, limits);
    PutInputs(plan, limits, staged);
  });
  return staged;
}

std::unique_ptr<const WorkspaceLock> LockWorkspace(const Plan& plan, Limits& limits) {
  const auto wait = [&] {
    pollfd watched = {.fd = limits.signals().descriptor(), .events = POLLIN, .revents = 0};
    poll(&watched, 1, 50);
    if (!limits.Interrupted()) return;
    throw Ended{Stopped(limits, plan.timeout, "waiting for the workspace")};
  };
  auto lock = std::make_unique<const WorkspaceLock>(
      plan.what.work, plan.what.wait ? wait : std::function<void()>());
  limits.Restart(plan.timeout);
  return lock;
}

}  // namespace host
