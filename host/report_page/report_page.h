#pragma once

#include <string>
#include <string_view>

namespace host {

// What `report` is asked to do.
struct ReportPageOptions {
  std::string path = {};     // A folder of results, results.json, or the report of a run.
  std::string against = {};  // The same, or "baseline:NAME"; empty for nothing.
  std::string out = {};      // Where the page goes; empty when it goes into a folder.
  std::string folder = {};   // Of the page and of whole recordings.
  double excerpt = 6;        // s
  double megabytes = 20;     // That the page takes at most.
};

// Writes the page of a run and returns the exit code: kSkip where this build has no page. Throws
// UsageError.
int WriteReportPage(const ReportPageOptions& options);

// The same with another template.
int WriteReportPage(const ReportPageOptions& options, std::string_view page);

// kPass where this build has a page, else kSkip, after it has said on stderr what is missing.
int CheckReportPage();

// The page in the folder of a suite's results that `suite --report` writes.
std::string PageOfSuite(const std::string& folder);

}  // namespace host
