#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "../compare/synthetic_results.h"
#include "base/json_parts.h"
#include "report_page/page_data.h"
#include "support/temporary_directory.h"

// Folders of suites that no suite has left, with recordings in them.
class PageTest : public testing::Test {
 protected:
  // The smallest page there is.
  static constexpr const char* kTemplate =
      "<html>\n<!--DATA-->\n<script>page()</script>\n<!--AUDIO-->\n</html>\n";

  static host::Json FileEntry(const std::string& name, const std::string& path);

  // A guard as a report has it.
  static host::Json GuardJson(const std::string& name, const std::string& file, double at,
                              bool fails);

  // Writes results.json into the folder, and the report of each case: its input "in.wav" and its
  // output "out.wav", which was measured against it.
  static void WriteSuite(const std::string& folder, const std::vector<host::Json>& cases);

  // A file, with the folders above it.
  static void Write(const std::string& path, const std::string& bytes);

  // The recordings of a case, 16-bit mono at 16 kHz.
  static void WriteSounds(const std::string& folder, const std::string& id,
                          const std::vector<double>& input, const std::vector<double>& output);

  // Has the report of a case say that its output was measured against these files of its workspace.
  static void MeasureAgainst(const std::string& folder, const std::string& id,
                             const host::Json& roles);

  // A case that has this verdict.
  static host::Json CaseOf(const std::string& id, const std::string& verdict);

  static host::PageData DataOf(const std::string& folder, const std::string& against = "",
                               const host::PageLimits& limits = {});

  // The ids of the cases, in their order.
  static std::string Ids(const host::Json& page);

  // The samples of a recording of the page, decoded by a library of its own.
  static std::vector<double> Decoded(const host::PageData& data, const std::string& key);

  TemporaryDirectory m_directory;
};
