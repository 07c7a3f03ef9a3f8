#include "cli/list_words.h"

#include <CLI/CLI.hpp>

#include "cli/color_option.h"
#include "cli/engine_options.h"
#include "cli/request.h"

namespace host {

ListWords::ListWords(CLI::App& app, Request& request) : m_request(request) {
  AddList(app);
  AddDescribe(app);
}

void ListWords::AddList(CLI::App& app) {
  CLI::App& list = *app.add_subcommand("list", "The catalogue of all routines, or of some");
  list.add_option("GLOB", m_request.filter.glob, "Only names like this: 'Test*Reverb*'")
      ->type_name("");
  list.add_flag("--available", m_request.filter.available, "Only routines that can be run");
  list.add_option("--group", m_request.filter.group, "Only this group")->type_name("G");
  list.add_flag("--json", m_json, "For programs");
  list.add_flag("--markdown", m_markdown, "As a document")->excludes("--json");
  AddColor(list, m_request.color);
  AddEngine(list, m_request.run.engine);
  AddEngineOnly(list, m_request.run.engineOnly);
}

void ListWords::AddDescribe(CLI::App& app) {
  CLI::App& describe = *app.add_subcommand(
      "describe", "All that is known of one routine, or of a run of it with these arguments");
  describe.add_option("ROUTINE", m_request.routine)->required();
  describe.add_option("ARGUMENT", m_request.words);
  describe.add_flag("--json", m_json, "For programs");
  AddEngine(describe, m_request.run.engine);
  AddEngineOnly(describe, m_request.run.engineOnly);
}

void ListWords::Take() {
  if (m_json) m_request.form = Request::Form::kJson;
  if (m_markdown) m_request.form = Request::Form::kMarkdown;
}

}  // namespace host
