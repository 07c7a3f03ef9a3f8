#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/json_parts.h"
#include "base/usage_error.h"
#include "files/whole_file.h"
#include "suite/scratch.h"

namespace host {

namespace {

namespace fs = std::filesystem;

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// As it stands in a JSON document.
std::string Escaped(const std::string& path) {
  const std::string quoted = Json(path).dump(-1, ' ', false, Json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

constexpr uint64_t kLeastBytes = 65536;

// Whether a file may not have grown as it should. What did not find room may have been removed
// since: then the report tells.
bool IsFull(const std::string& folder, const std::string& report) {
  struct statvfs room = {};
  const bool known = statvfs(folder.c_str(), &room) == 0 && room.f_blocks > 0;
  if (known && uint64_t{room.f_bavail} * room.f_frsize < kLeastBytes) return true;
  return report.find(strerror(ENOSPC)) != std::string::npos;
}

// Copies folders, files and links; nothing else holds what a run has left.
void CopyTree(const fs::path& from, const fs::path& to) {
  fs::create_directory(to, from);
  for (const fs::directory_entry& each : fs::directory_iterator(from)) {
    const fs::path place = to / each.path().filename();
    if (each.is_symlink()) {
      fs::copy_symlink(each.path(), place);
    } else if (each.is_directory()) {
      CopyTree(each.path(), place);
    } else if (each.is_regular_file()) {
      fs::copy_file(each.path(), place);
    }
  }
}

}  // namespace

std::string IncomingFolder(const std::string& results) { return results + "/.incoming"; }

void Homecoming::Bring() const {
  const std::string workspace = scratch + "/cases/" + id;
  const std::string place = results + "/reports/" + id + ".json";
  const std::string report = ReadAll(place);
  if (IsFull(scratch, report)) {
    throw UsageError{"the scratch folder " + fs::path(scratch).parent_path().string() +
                     " is full: " + strerror(ENOSPC)};
  }
  const std::string incoming = IncomingFolder(results) + "/" + id;
  try {
    fs::remove_all(incoming);
    fs::create_directories(IncomingFolder(results));
    CopyTree(workspace, incoming);
    fs::rename(incoming, results + "/cases/" + id);
  } catch (const fs::filesystem_error& error) {
    std::error_code ignored;
    fs::remove_all(incoming, ignored);
    throw UsageError{"cannot bring the results home from the scratch folder: " +
                     std::string(error.what())};
  }
  if (!report.empty() &&
      !ReplaceFile(place, 0644, Replaced(report, Escaped(scratch), Escaped(results)))) {
    throw UsageError{"cannot write " + place + ": " + strerror(errno)};
  }
  // In place, because this process goes on printing into it.
  fflush(nullptr);
  const std::string printed = results + "/reports/" + id + ".txt";
  OverwriteFile(printed, Replaced(ReadAll(printed), scratch, results));
}

}  // namespace host
