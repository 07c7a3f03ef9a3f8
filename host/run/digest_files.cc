#include "run/digest_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <string>

#include "files/audio_figures.h"
#include "files/known_digest.h"
#include "files/regular_file.h"
#include "files/sha256.h"
#include "recording/staged_record.h"
#include "run/stopped.h"

namespace host {

namespace {

using Digest = FileDigest (*)(int file, const std::function<bool()>& goOn);

void Fill(FileReport& report, Digest digestOf, const std::function<bool()>& goOn) {
  const int file = OpenRegularDescriptor(report.place.path);
  if (file < 0) {
    report.undigested = FaultText(errno);
    return;
  }
  const FileDigest made = digestOf(file, goOn);
  close(file);
  report.digest = made.digest;
  report.undigested = made.fault == kStopped ? "the time was up" : made.fault;
}

// What was put in the place of the input, as long as it is still that.
void FindStaged(const std::vector<StagedFile>& record, FileReport& input) {
  const auto same = [&input](const StagedFile& file) {
    return file.place == input.place.place && file.digest == input.digest;
  };
  const auto found = std::find_if(record.begin(), record.end(), same);
  if (found != record.end()) input.staged = *found;
}

}  // namespace

void DigestInputs(const Plan& plan, Limits& limits, std::vector<FileReport>& inputs) {
  const std::vector<StagedFile> record = ReadStagedRecord(plan.what.work);
  for (FileReport& input : inputs) {
    // A file that grows for ever has an end here.
    const double latest = Now() + kMaxSeconds;
    Fill(input, KnownDigestOf, [&] { return !limits.Interrupted() && Now() < latest; });
    if (limits.Interrupted()) throw Ended{Stopped(limits, plan.timeout, "reading its inputs")};
    FindStaged(record, input);
  }
  limits.Restart(plan.timeout);
}

void DigestOutput(Limits& limits, FileReport& output) {
  Fill(output, DigestOf, [&limits] { return limits.Check() == Limits::Stop::kNone; });
}

}  // namespace host
