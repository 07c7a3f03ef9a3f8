#include "run/shared_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include "base/usage_error.h"
#include "files/beneath.h"

namespace host {

namespace {

// A file of a run, and what it is there.
struct Role {
  std::string name;  // "output /sdcard/x"
  std::string path;
  bool written = true;
  bool report = false;
};

std::vector<Role> Roles(std::span<const FilePlace> inputs, const Plan& plan) {
  std::vector<Role> roles;
  const std::string& report = plan.what.json;
  if (!report.empty() && report != "-") {
    roles.push_back({.name = "the report", .path = report, .report = true});
  }
  roles.push_back({.name = "the log", .path = plan.Log().Path()});
  for (const FilePlace& output : plan.outputs) {
    if (output.path.empty()) continue;
    roles.push_back({.name = "output " + output.name, .path = output.path});
    if (plan.what.wav && output.use.container == Container::kHeaderless) {
      roles.push_back({.name = "the copy of output " + output.name, .path = output.path + ".wav"});
    }
  }
  for (const NamedFile& taker : plan.takers.files) {
    roles.push_back({.name = "--out", .path = taker.path});
  }
  for (const NamedFile& source : plan.sources.files) {
    roles.push_back({.name = "--in", .path = source.path, .written = false});
  }
  for (const FilePlace& input : inputs) {
    if (input.path.empty()) continue;
    roles.push_back({.name = "input " + input.name, .path = input.path, .written = false});
  }
  return roles;
}

// What two names of one file have in common: the file itself, or where it would be.
std::vector<std::string> Identities(const std::string& path) {
  std::vector<std::string> identities;
  struct stat status;
  if (stat(path.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) return {};  // A device or a pipe may be shared.
    identities.push_back(std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino));
  }
  std::error_code error;
  const auto place = std::filesystem::weakly_canonical(std::filesystem::absolute(path), error);
  if (!error) identities.push_back(place.string());
  return identities;
}

}  // namespace

void RefuseSharedFiles(std::span<const FilePlace> inputs, const Plan& plan,
                       const std::function<void()>& goOn) {
  const std::vector<Role> roles = Roles(inputs, plan);
  std::map<std::string, const Role*> owners;
  for (const Role& role : roles) {
    goOn();
    for (const std::string& identity : Identities(role.path)) {
      const auto [owner, first] = owners.emplace(identity, &role);
      const Role& other = *owner->second;
      if (first || &other == &role || (!role.written && !other.written)) continue;
      using Report = UsageError::Report;
      throw UsageError{.message = other.name + " and " + role.name + " are one file: " + role.path,
                       .report = !other.report  ? Report::kWritten
                                 : role.written ? Report::kReplaced
                                                : Report::kLeft};
    }
  }
}

void RefuseOutputs(std::span<const FilePlace> outputs, const std::string& workspace) {
  const int folder = OpenFolder(workspace);
  std::string fault;
  for (const FilePlace& output : outputs) {
    if (output.path.empty()) continue;
    const int there = OpenBeneath(folder, output.place, O_PATH | O_CLOEXEC, 0);
    struct stat status = {};
    if (there < 0 && errno == EXDEV) {
      fault = WriteFault(EXDEV);
    } else if (there >= 0 && fstat(there, &status) == 0 && !S_ISREG(status.st_mode)) {
      fault = "is not a regular file";
    } else if (there >= 0 && status.st_nlink > 1) {
      fault = WriteFault(EMLINK);
    }
    if (there >= 0) close(there);
    if (fault.empty()) continue;
    close(folder);
    throw UsageError{"output " + output.name + " (" + output.path + ") " + fault};
  }
  close(folder);
}

void RemoveCopies(std::span<const FilePlace> outputs, const std::string& workspace) {
  for (const FilePlace& output : outputs) {
    if (output.path.empty() || output.use.container != Container::kHeaderless) continue;
    const WorkFile copy = {workspace, output.place + ".wav"};
    if (const int error = copy.Remove(); error != 0) {
      throw UsageError{"cannot remove " + copy.Path() + ": " + WriteFault(error)};
    }
  }
}

}  // namespace host
