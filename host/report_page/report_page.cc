#include "report_page/report_page.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "base/exit_code.h"
#include "base/printable.h"
#include "base/units.h"
#include "base/usage_error.h"
#include "process/limits.h"
#include "process/signals.h"
#include "report/output.h"
#include "report/result_file.h"
#include "report_page/page_data.h"
#include "report_page/page_folder.h"
#include "report_page/page_run.h"
#include "report_page/page_template.h"
#include "report_page/page_text.h"

namespace host {

namespace {

constexpr double kPatience = 600;  // Seconds for the reader of a pipe.
constexpr size_t kMostCases = 200;

void CheckOptions(const ReportPageOptions& options) {
  if (options.path.empty()) {
    throw UsageError{"report takes a folder of results or a report (audio_bench report --help)"};
  }
  if (options.out.empty() == options.folder.empty()) {
    throw UsageError{options.out.empty()
                         ? "report needs --out FILE or --folder DIR (audio_bench report --help)"
                         : "--out and --folder exclude each other"};
  }
}

std::string Summary(const std::string& place, size_t bytes, const PageRun& run,
                    const PageData& data) {
  std::string text = Printable(PageSentence(run)) + "\n";
  text += "page  " + Printable(place) + "  " + Bytes(bytes) + ", " +
          std::to_string(run.cases.size()) + " of " + std::to_string(run.total) +
          (run.total == 1 ? " case, " : " cases, ") +
          std::to_string(data.recordings - data.leftOut) + " of " +
          std::to_string(data.recordings) + " recordings\n";
  return text;
}

// The limit holds for the page as a whole.
PageLimits LimitsOf(const ReportPageOptions& options, std::string_view page) {
  const auto most = static_cast<size_t>(std::llround(options.megabytes * 1e6));
  return {.excerpt = options.excerpt,
          .bytes = most > page.size() ? most - page.size() : 0,
          .megabytes = options.megabytes,
          .all = !options.folder.empty()};
}

}  // namespace

int CheckReportPage() {
  if (!PageTemplate().empty()) return exit_code::kPass;
  fputs(
      "audio_bench: this build has no page: nodejs and npm, or the packages of the page, were not "
      "there when it was configured\n",
      stderr);
  return exit_code::kSkip;
}

int WriteReportPage(const ReportPageOptions& options) {
  CheckOptions(options);
  const int there = CheckReportPage();
  return there == exit_code::kPass ? WriteReportPage(options, PageTemplate()) : there;
}

int WriteReportPage(const ReportPageOptions& options, std::string_view page) {
  CheckOptions(options);
  std::optional<PageFolder> folder;
  if (!options.folder.empty()) folder.emplace(options.folder);
  const std::string place = folder ? folder->page() : options.out;
  ResultFile file(place, Now() + kPatience);
  const PageRun run = ReadPageRun(options.path, options.against, kMostCases);
  PageData data = MakePageData(run, LimitsOf(options, page));
  if (folder) folder->AddFiles(run, data);
  const std::string text = PageText(page, data);
  const HostSignals signals;
  Limits limits(signals, kPatience);
  const int written = file.Write(text, limits);
  if (written != exit_code::kPass) return written;
  return PrintResults(Summary(place, text.size(), run, data));
}

std::string PageOfSuite(const std::string& folder) { return folder + "/report.html"; }

}  // namespace host
