#include "demo/demo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <span>
#include <system_error>

#include "base/printable.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/beneath.h"
#include "files/new_file.h"
#include "files/regular_file.h"
#include "files/workspace.h"

namespace host {

namespace {

[[noreturn]] void Refuse(const std::string& path, int error) {
  throw UsageError{"cannot write " + path + ": " + WriteFault(error)};
}

// What is where the demo belongs.
enum class There { kNothing, kPartOfTheDemo, kOther };

// An empty file, and one that is too short but holds the demo's samples so far, is what is left of
// a demo whose writing was cut short.
There Look(const std::string& path, std::span<const std::byte> demo, struct stat& status) {
  if (stat(path.c_str(), &status) != 0) return There::kNothing;
  if (S_ISDIR(status.st_mode)) Refuse(path, EISDIR);
  const auto length = static_cast<size_t>(status.st_size);
  if (!S_ISREG(status.st_mode) || length >= demo.size()) return There::kOther;
  FILE* const file = OpenRegular(path);
  if (file == nullptr) return There::kOther;
  std::vector<std::byte> bytes(length);
  const bool same = fread(bytes.data(), 1, length, file) == length &&
                    std::equal(bytes.begin(), bytes.end(), demo.begin());
  fclose(file);
  return same ? There::kPartOfTheDemo : There::kOther;
}

// errno; 0 when the demo has its place. It replaces nothing else than a part of it.
int Write(int workspace, const std::string& place, std::span<const std::byte> demo, bool replace) {
  if (CreateParentsBeneath(workspace, place) != 0) return errno;
  const std::filesystem::path path(place);
  const int folder =
      OpenBeneath(workspace, path.parent_path(), O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
  if (folder < 0) return errno;
  int error = 0;
  {
    NewFile file(folder, path.filename(), 0666);
    const bool written = file.descriptor() >= 0 &&
                         WriteAll(file.descriptor(), demo.data(), demo.size()) &&
                         file.Publish(replace);
    if (!written) error = errno;
  }
  close(folder);
  return error;
}

}  // namespace

std::string PlaceDemo(const std::string& workspace) {
  const CatalogueRow& row = FindRow("RunTestCase");
  const auto inputs = PlaceFiles(row.inputs, row.declared.words.parameters, {}, workspace);
  if (inputs.empty()) throw UsageError{"RunTestCase reads no recording"};
  const std::string& path = inputs.front().path;
  const std::vector<int16_t> recording = DemoRecording();
  const std::span<const std::byte> demo = std::as_bytes(std::span(recording));
  struct stat status = {};
  const There there = Look(path, demo, status);
  if (there == There::kOther) {
    return "recording  " + Printable(path) + "  kept as it is, " +
           Bytes(static_cast<uint64_t>(status.st_size)) + "\n";
  }
  std::error_code error;
  std::filesystem::create_directories(workspace, error);
  if (error) Refuse(path, error.value());
  const int folder = OpenFolder(workspace);
  if (folder < 0) Refuse(path, errno);
  const bool replace = there == There::kPartOfTheDemo;
  const int fault = Write(folder, inputs.front().place, demo, replace);
  close(folder);
  if (fault != 0) Refuse(path, fault);
  return "recording  " + Printable(path) +
         (replace ? "  written in place of a part" : "  written") + ": a plucked melody, 8.00 s, " +
         FileFormat(inputs.front().use) + "\n";
}

}  // namespace host
