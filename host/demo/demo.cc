#include "demo/demo.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "base/printable.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "catalogue/catalogue_text.h"
#include "files/workspace.h"

namespace host {

namespace {

[[noreturn]] void Refuse(const std::string& path, int error) {
  throw UsageError{"cannot write " + path + ": " + strerror(error)};
}

void WriteNew(const std::string& path, const std::vector<int16_t>& samples) {
  FILE* const file = fopen(path.c_str(), "wbx");  // Fails rather than overwrite a recording.
  if (file == nullptr) Refuse(path, errno);
  errno = 0;
  const bool written =
      fwrite(samples.data(), sizeof(int16_t), samples.size(), file) == samples.size();
  const int error = errno;
  if (fclose(file) == 0 && written) return;
  const int closingError = errno;
  remove(path.c_str());  // A partial recording looks like a short one.
  Refuse(path, error != 0 ? error : closingError);
}

}  // namespace

std::string PlaceDemo(const std::string& workspace) {
  const CatalogueRow& row = FindRow("RunTestCase");
  const auto inputs = PlaceFiles(row.inputs, row.declared.words.parameters, {}, workspace);
  if (inputs.empty()) throw UsageError{"RunTestCase reads no recording"};
  const std::string& path = inputs.front().path;
  struct stat status;
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) Refuse(path, EISDIR);
    return "recording  " + Printable(path) + "  kept as it is, " +
           Bytes(static_cast<uint64_t>(status.st_size)) + "\n";
  }
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
  if (error) Refuse(path, error.value());
  WriteNew(path, DemoRecording());
  return "recording  " + Printable(path) + "  written: a plucked melody, 8.00 s, " +
         FileFormat(inputs.front().use) + "\n";
}

}  // namespace host
