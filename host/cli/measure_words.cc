#include "cli/measure_words.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "base/usage_error.h"
#include "cli/staging_options.h"

namespace host {

MeasureWords::MeasureWords(CLI::App& app, MeasureOptions& options) : m_options(options) {
  CLI::App& measure = *app.add_subcommand("measure", "Figures of recordings, with their units");
  measure.footer(
      "FILE: what stage reads. The others are brought to its rate. Without --measure: all that\n"
      "can be told from what is given. --list says what each measure is.\n"
      "Exit codes: 0 measured, 2 wrong words, 3 a file cannot be read.");
  measure.add_option("FILE", m_options.files)->type_name("");
  measure.add_option("--against", m_options.against.reference.path, "What FILE should be")
      ->type_name("REFERENCE_FILE");
  measure.add_option("--far", m_options.against.far.path, "What the loudspeaker played")
      ->type_name("FILE");
  measure.add_option("--near", m_options.against.near.path, "What was said, without echo")
      ->type_name("FILE");
  measure.add_option("--input", m_options.against.input.path, "What was processed into FILE")
      ->type_name("FILE");
  measure.add_option("--measure", m_measures, "Only these, in this order")
      ->type_name("NAME,...")
      ->allow_extra_args(false);
  measure.add_option("--raw", m_raw, "What samples without a header are: RATE,CHANNELS,s16")
      ->type_name("FORM")
      ->check(RawFormProblem);
  measure.add_option("--json", m_options.json, "Also write the figures to this file; - is stdout")
      ->type_name("FILE");
  measure.add_option("--csv", m_options.csv, "Also write the figures as a table; - is stdout")
      ->type_name("FILE");
  measure
      .add_option("--plot", m_options.plot,
                  "Also draw FILE as SVG: wave, spectrum, and the measures in the course of time")
      ->type_name("FILE.svg");
  measure.add_flag("--list", m_options.list, "Explain every measure");
}

void MeasureWords::Take() {
  for (const std::string& words : m_measures) {
    std::istringstream stream(words);
    for (std::string name; std::getline(stream, name, ',');) m_options.measures.push_back(name);
  }
  if (!m_raw.empty()) m_options.raw = ParseRawForm(m_raw);
  if (m_options.list && !m_options.files.empty()) {
    throw UsageError{"--list explains every measure and takes no files"};
  }
}

}  // namespace host
