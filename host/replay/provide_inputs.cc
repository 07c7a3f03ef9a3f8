#include "replay/provide_inputs.h"

#include <filesystem>
#include <system_error>

#include "replay/file_change.h"

namespace host {

namespace {

namespace fs = std::filesystem;
using GoOn = std::function<bool()>;

void Copy(const RecordedFile& input, const std::string& workspace, const GoOn& goOn) {
  const fs::path to = fs::path(workspace) / input.place;
  std::error_code error;
  fs::create_directories(to.parent_path(), error);
  if (!error) fs::copy_file(input.path, to, error);
  if (error) throw ReplayFault{"input " + input.name + " cannot be copied: " + error.message()};
  // What is run on is what has been looked at.
  const std::string fault = Changed(to, input.digest, goOn);
  if (!fault.empty()) throw ReplayFault{"input " + input.name + " " + fault + ": " + input.path};
}

// The faults of an input that has not the bytes that it had, when it cannot be made again either.
void RequireSource(const RecordedFile& input, const std::string& fault, const GoOn& goOn) {
  const std::string own = "input " + input.name + " " + fault + ": " + input.path;
  if (input.source.empty()) throw ReplayFault{own};
  const std::string source = Changed(input.source, input.sourceDigest, goOn);
  if (source.empty()) return;
  throw ReplayFault{own + ", and what it was made from " + source + ": " + input.source};
}

}  // namespace

void ProvideInputs(const RecordedRun& run, const GoOn& goOn, Case& what) {
  bool anew = false;
  for (const RecordedFile& input : run.inputs) {
    if (input.digest.empty() && input.reason == "absent") continue;
    if (input.digest.empty()) {
      throw ReplayFault{"input " + input.name + " has no hash in the report: " + input.reason};
    }
    const std::string fault = Changed(input.path, input.digest, goOn);
    if (fault.empty()) continue;
    RequireSource(input, fault, goOn);
    anew = true;
  }
  what.in.clear();
  for (const RecordedFile& input : run.inputs) {
    if (input.digest.empty()) continue;
    if (!anew || input.source.empty()) {
      Copy(input, what.work, goOn);
      continue;
    }
    // All that was staged is staged again: its level may be that of a group.
    RequireSource(input, "", goOn);
    what.in.push_back(input.name + "=" + input.source);
  }
}

}  // namespace host
