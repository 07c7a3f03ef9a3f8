#include "run/guard_run.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/regular_file.h"

namespace host {

namespace {

constexpr uint64_t kMaxStreamBytes = 256 << 20;

std::vector<IgnoredArgument> IgnoredArguments(const Plan& plan) {
  const std::vector<harness::Parameter> parameters = harness::Parameters(plan.row->declared.words);
  const ArgumentList words = plan.Words();
  std::vector<IgnoredArgument> ignored;
  for (const harness::UnusedArgument& unused : plan.row->unused) {
    const std::string used = unused.used == nullptr ? "" : unused.used(words);
    if (used.empty()) continue;
    const auto parameter =
        std::find_if(parameters.begin(), parameters.end(),
                     [&](const harness::Parameter& each) { return each.name == unused.parameter; });
    const auto at = static_cast<size_t>(parameter - parameters.begin());
    ignored.push_back({std::string(unused.parameter), std::string(words[at]), used});
  }
  return ignored;
}

// The bytes up to which a routine decodes a stream that stops where no whole frame stands.
std::optional<uint64_t> StreamEnd(const FileReport& input, const ArgumentList& words) {
  if (input.place.use.streamEnd == nullptr) return std::nullopt;
  if (input.bytes.value_or(0) > kMaxStreamBytes) return std::nullopt;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenRegular(input.place.path), fclose);
  if (file == nullptr) return std::nullopt;
  std::vector<unsigned char> bytes(static_cast<size_t>(input.bytes.value_or(0)));
  bytes.resize(fread(bytes.data(), 1, bytes.size(), file.get()));
  return input.place.use.streamEnd(words, bytes);
}

// How far the routine came in an input; nothing when that is not known.
std::optional<InputRead> ReadOf(const FileReport& input, const RunReport& report,
                                const ArgumentList& words) {
  const std::vector<FileRead>& reads = report.outcome->reads;
  const auto found = std::find_if(reads.begin(), reads.end(), [&](const FileRead& each) {
    return each.place == input.place.place;
  });
  if (found == reads.end() || !input.bytes) return std::nullopt;
  const uint64_t end = std::min(found->bytes, StreamEnd(input, words).value_or(UINT64_MAX));
  InputRead read = {.name = input.place.name};
  if (const std::optional<AudioLayout>& audio = input.audio; audio && audio->Seconds() > 0) {
    const double perSecond = static_cast<double>(audio->bytes) / audio->Seconds();
    read.read = static_cast<double>(end - std::min(end, audio->offset)) / perSecond;
    read.all = audio->Seconds();
    read.read = std::min(read.read, read.all);
  } else {
    read.inBytes = true;
    read.read = static_cast<double>(end);
    read.all = static_cast<double>(*input.bytes);
  }
  return read;
}

// Whether all of an input is to be read, and nothing is known of it that explains why it is not.
bool IsToBeRead(const FileReport& input) {
  return input.place.use.partRead.empty() && !input.absent && !input.changed &&
         input.problems.empty();
}

}  // namespace

void GuardRun(const Plan& plan, Limits& limits, RunReport& report) {
  report.guards = CheckGuards({.rules = {},
                               .facts = {.ignoredArguments = IgnoredArguments(plan),
                                         .engineLines = report.outcome->engineLines}});
  // One that was stopped would have gone on.
  const bool returned = report.outcome->end == ChildOutcome::End::kReturned;
  for (FileReport& input : report.inputs) {
    if (limits.Check() != Limits::Stop::kNone) return;
    if (!returned || !IsToBeRead(input)) continue;
    const std::optional<InputRead> read = ReadOf(input, report, plan.Words());
    if (read) input.guards = CheckGuards({.rules = {}, .facts = {.inputs = {*read}}});
  }
  for (FileReport& output : report.outputs) {
    if (!output.place.use.appended || output.state != OutputState::kWritten) continue;
    output.guards = CheckGuards({.rules = {}, .facts = {.keptBytes = output.bytesBefore}});
  }
}

}  // namespace host
