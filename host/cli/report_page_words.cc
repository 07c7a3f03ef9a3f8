#include "cli/report_page_words.h"

#include <CLI/CLI.hpp>

#include "report_page/report_page.h"

namespace host {

namespace {

constexpr double kMostExcerpt = 600;  // s
constexpr double kMostMegabytes = 100'000;

}  // namespace

void AddReportPage(CLI::App& app, ReportPageOptions& options) {
  CLI::App& report =
      *app.add_subcommand("report", "A page of results, to look at and to listen to");
  report.footer(
      "DIR: of a suite's results; REPORT.json: of run --json. The page is one file that needs no\n"
      "network, and carries excerpts of what is worth hearing. Exit codes: 0 written, 2 not, 77\n"
      "this build has no page.");
  report.add_option("RESULTS", options.path, "DIR or REPORT.json")->required()->type_name("");
  report
      .add_option("--against", options.against,
                  "Beside other results: a DIR, a REPORT.json, or baseline:NAME")
      ->type_name("DIR|baseline:NAME");
  report.add_option("-o,--out", options.out, "Where the page goes; - is stdout")->type_name("FILE");
  report
      .add_option("--folder", options.folder,
                  "Page and whole recordings go into this folder instead")
      ->type_name("DIR");
  report.add_option("--excerpt-s", options.excerpt, "How long an excerpt is")
      ->type_name("N")
      ->check(CLI::Range(0.1, kMostExcerpt))
      ->capture_default_str();
  report.add_option("--most-mb", options.megabytes, "How large the page may be, in MB")
      ->type_name("N")
      ->check(CLI::Range(0.0, kMostMegabytes))
      ->capture_default_str();
}

void AddOpen(CLI::App& app, std::string& page) {
  CLI::App& open = *app.add_subcommand("open", "Show the page of results in the browser");
  open.footer(
      "DIR: of a suite's results, whose page is written where it is not there or older; of report\n"
      "--folder; or the page itself. Without a way to call a browser the page is served on\n"
      "127.0.0.1, at an address that is printed, until Ctrl-C.");
  open.add_option("DIR", page, "Results, or a page")->required()->type_name("");
}

}  // namespace host
