#include "cli/synopsis.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

namespace host {

namespace {

constexpr Synopsis kSynopses[] = {
    {"list", "[GLOB] [OPTIONS]"},
    {"describe", "ROUTINE [ARGUMENT...] [OPTIONS]"},
    {"run", "[ROUTINE [ARGUMENT...]] [OPTIONS]"},
    {"stage", "ROUTINE [ARGUMENT...] --in [NAME=]FILE [OPTIONS]"},
    {"suite", "[SUITE.toml] [GLOB] [OPTIONS]"},
    {"merge", "DIR... --out DIR"},
    {"replay", "REPORT.json"},
    {"measure", "FILE... [--against FILE] [OPTIONS]"},
    {"compare", "A B [OPTIONS]"},
    {"report", "DIR|REPORT.json [--against DIR] --out FILE [OPTIONS]"},
    {"open", "DIR"},
    {"baseline", "save|list|show|remove|export [WORD...]"},
    {"selftest", "[--json]"},
    {"controls", "[FAULT...] [OPTIONS]"},
    {"demo", "[OPTIONS]"},
    {"completion", "bash"},
    {"manual", ""},
    {"help", "[COMMAND]"},
};

class UsageFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    if (app->get_parent() == nullptr) return "Usage: audio_bench COMMAND [...]\n";
    for (const Synopsis& each : kSynopses) {
      if (each.command != app->get_name()) continue;
      return "Usage: audio_bench " + std::string(each.command) +
             (each.arguments.empty() ? "" : " ") + std::string(each.arguments) + "\n";
    }
    return CLI::Formatter::make_usage(app, std::move(name));
  }
};

}  // namespace

std::span<const Synopsis> Synopses() { return kSynopses; }

const CLI::App* FindCommand(const CLI::App& app, std::string_view name) {
  const auto found =
      app.get_subcommands([name](const CLI::App* each) { return each->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

void ShowSynopses(CLI::App& app) { app.formatter(std::make_shared<UsageFormatter>()); }

}  // namespace host
