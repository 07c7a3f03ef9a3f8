#pragma once

#include <string>

#include "report_page/page_data.h"
#include "report_page/page_run.h"

namespace host {

// A folder with a page and the whole recordings that it leads to.
class PageFolder {
 public:
  // Makes it. Throws UsageError when it cannot be had.
  explicit PageFolder(const std::string& path);

  std::string page() const { return m_path + "/index.html"; }

  // Writes the recordings of all players as FLAC and has their versions lead to them. One that
  // cannot be written is a note of its case.
  void AddFiles(const PageRun& run, PageData& data) const;

 private:
  std::string m_path;
};

}  // namespace host
