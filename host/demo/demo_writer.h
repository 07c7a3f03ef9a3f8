#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "catalogue/rows.h"
#include "demo/demo_cases.h"
#include "demo/material.h"
#include "files/sha256.h"
#include "files/workspace.h"

namespace host {

// Puts the demo's files into a workspace: first it is told who reads, then it writes.
class DemoWriter {
 public:
  // hashed: whether what it writes is hashed later in this process, which then need not read it.
  explicit DemoWriter(std::string workspace, bool hashed = false);

  // Wants what a routine reads when it runs with these words. A file that several routines read has
  // what any of them asks for.
  void Want(const CatalogueRow& row, std::span<const std::string_view> words);

  bool Wants(std::string_view place) const { return m_wanted.contains(std::string(place)); }

  // Makes the sounds that Write and WriteTruths write, for this process and those that come of it.
  void Render() const;

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
  void PutSound(const FilePlace& file, Sound sound, const harness::WaveFormat& format);
  void Put(const FilePlace& file, std::span<const std::byte> bytes,
           const FileDigest* digest = nullptr);
  bool Run(const StreamMaker& maker) const;

  const std::string m_workspace;
  const bool m_hashed;
  std::map<std::string, FilePlace> m_wanted;  // By its place.
  std::map<std::string, Line> m_lines;
};

}  // namespace host
