#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "catalogue/rows.h"
#include "demo/demo_cases.h"
#include "demo/material.h"
#include "files/workspace.h"

namespace host {

// Puts the demo's files into a workspace: first it is told who reads, then it writes.
class DemoWriter {
 public:
  explicit DemoWriter(std::string workspace);

  // Wants what a routine reads when it runs with these words. A file that several routines read has
  // what any of them asks for.
  void Want(const CatalogueRow& row, std::span<const std::string_view> words);

  bool Wants(std::string_view place) const { return m_wanted.contains(std::string(place)); }

  // Writes all that is wanted. Throws UsageError when something cannot be written.
  void Write();

  // Writes for each of them that something is to be taken out of what should be left, as a WAVE at
  // its TruthPlace.
  void WriteTruths();

  // Has the stream written by a run of this program.
  void Make(const StreamMaker& maker);

  void WriteText(const std::string& place, const std::string& text);

  // What was done, a line for each file and list.
  std::string Lines() const;

 private:
  struct Line {
    int written = 0;
    int kept = 0;
    std::string what = {};
  };

  void WantFile(const FilePlace& input);
  void WriteFile(const FilePlace& input);
  void Put(const FilePlace& file, std::span<const std::byte> bytes);
  const std::vector<int16_t>& Rendered(Sound sound, const harness::WaveFormat& format);
  std::vector<int16_t> SentenceSamples(const SentenceName& sentence);
  bool Run(const StreamMaker& maker) const;

  const std::string m_workspace;
  std::map<std::string, FilePlace> m_wanted;  // By its place.
  std::map<std::string, Line> m_lines;
  std::map<std::tuple<Sound, int, int>, std::vector<int16_t>> m_rendered;
  std::optional<Sentences> m_sentences;
};

}  // namespace host
