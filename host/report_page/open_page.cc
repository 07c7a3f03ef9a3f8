#include "report_page/open_page.h"

#include <spawn.h>
#include <sys/wait.h>

#include <filesystem>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "files/regular_file.h"
#include "report_page/page_server.h"
#include "report_page/report_page.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxPageBytes = size_t{1} << 30;

bool IsOlder(const fs::path& page, const fs::path& results) {
  std::error_code error;
  const auto ofPage = fs::last_write_time(page, error);
  if (error) return true;
  const auto ofResults = fs::last_write_time(results, error);
  return !error && ofPage < ofResults;
}

// False where there is nothing that opens it.
bool OpenInBrowser(const std::string& page) {
  std::string program = "xdg-open";
  std::string file = fs::absolute(page).string();
  char* words[] = {program.data(), file.data(), nullptr};
  pid_t child = 0;
  if (posix_spawnp(&child, program.c_str(), nullptr, nullptr, words, environ) != 0) return false;
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int Show(const std::string& page) {
  const TextRead read = ReadText(page, kMaxPageBytes, [] { return true; });
  if (!read.fault.empty()) throw UsageError{"cannot read " + page + ": " + read.fault};
  if (OpenInBrowser(page)) return exit_code::kPass;
  return PageServer(read.text).Run();
}

}  // namespace

int OpenPage(const std::string& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) return Show(path);
  const fs::path results = fs::path(path) / "results.json";
  const std::string ofFolder = (fs::path(path) / "index.html").string();
  if (!fs::exists(results, error)) {
    if (fs::exists(ofFolder, error)) return Show(ofFolder);
    throw UsageError{path + " holds neither results.json of a suite nor a page"};
  }
  const std::string page = PageOfSuite(path);
  if (IsOlder(page, results)) {
    const int written = WriteReportPage({.path = path, .out = page});
    if (written != exit_code::kPass) return written;
  }
  return Show(page);
}

}  // namespace host
