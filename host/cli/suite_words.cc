#include "cli/suite_words.h"

#include <CLI/CLI.hpp>

#include "base/usage_error.h"
#include "cli/color_option.h"
#include "cli/engine_options.h"

namespace host {

namespace {

constexpr int kMaxJobs = 1024;

// The words as they were typed, the program's name before them.
std::vector<std::string> Typed(std::span<const std::string> words) {
  std::vector<std::string> typed = {"audio_bench"};
  typed.insert(typed.end(), words.begin(), words.end());
  return typed;
}

}  // namespace

SuiteWords::SuiteWords(CLI::App& app, SuiteOptions& suite, MergeOptions& merge)
    : m_suite(suite), m_merge(merge) {
  AddSuite(app);
  AddMerge(app);
}

void SuiteWords::AddSuite(CLI::App& app) {
  CLI::App& suite = *app.add_subcommand("suite", "Run many cases, each in a workspace of its own");
  suite.footer(
      "SUITE.toml declares cases; without one they are the routines of the catalogue, on the demo\n"
      "recordings. GLOB chooses among their ids. Exit codes: 0 all pass, 1, 3, 4 as the worst "
      "case,\n"
      "77 all are skipped.");
  suite.add_option("SUITE", m_words, "A file of cases, a glob of their ids")->type_name("");
  suite.add_flag("--all", m_all, "All of them, as without a glob");
  suite.add_option("--group", m_suite.group, "Only routines of this group")->type_name("G");
  suite.add_option("-j,--jobs", m_suite.jobs, "Cases at a time (as many as processors)")
      ->type_name("N")
      ->check(CLI::Range(1, kMaxJobs));
  suite.add_option("--out", m_suite.out, "Where the results go (bench_results/UTC-TIME)")
      ->type_name("DIR");
  AddEngine(suite, m_suite.engine);
  AddEngineOnly(suite, m_suite.engineOnly);
  suite.add_flag(
      "--resume", m_suite.resume,
      "Go on in that folder, or in the latest: only what has not passed, or has changed");
  suite.add_option("--shard", m_shard, "Only part I of N of the cases")->type_name("I/N");
  suite.add_option("--scratch", m_suite.scratch, "Run the cases in DIR, on a disk of this machine")
      ->type_name("DIR");
  suite.add_flag("--dry-run", m_suite.dryRun, "Only say which cases there are");
  suite.add_flag("--strict", m_suite.strict, "A warning is a failure");
  suite.add_flag("--report", m_suite.report, "Also write a page of the results: DIR/report.html");
  AddColor(suite, m_suite.color);
}

void SuiteWords::AddMerge(CLI::App& app) {
  CLI::App& merge =
      *app.add_subcommand("merge", "Put the results of all shards of a suite together");
  merge.add_option("DIR", m_merge.folders, "The results of the shards")->type_name("");
  merge.add_option("--out", m_merge.out, "Where the results of all go")
      ->type_name("DIR")
      ->required();
  AddColor(merge, m_merge.color);
}

void SuiteWords::TakeSuite(std::span<const std::string> command) {
  m_suite.command = Typed(command);
  for (const std::string& word : m_words) {
    const bool first = &word == &m_words.front();
    if (first && word.ends_with(".toml")) {
      m_suite.file = word;
    } else if (m_suite.glob.empty() && !word.empty()) {
      m_suite.glob = word;
    } else {
      throw UsageError{"unexpected " + word + " (audio_bench suite --help)"};
    }
  }
  if (m_all && !m_suite.glob.empty()) {
    throw UsageError{"--all and " + m_suite.glob + " exclude each other"};
  }
  if (!m_shard.empty()) m_suite.shard = ParseShard(m_shard);
}

void SuiteWords::TakeMerge(std::span<const std::string> command) {
  m_merge.command = Typed(command);
  if (m_merge.folders.empty()) throw UsageError{"merge is without the folders of the shards"};
}

}  // namespace host
