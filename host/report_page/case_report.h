#pragma once

#include <string>
#include <vector>

#include "base/json_parts.h"
#include "measure/measure_file.h"
#include "report_page/page_run.h"

namespace host {

// The report of the run of a case, and where its files are today.
class CaseReport {
 public:
  // `record` is that of the case, `folder` that its paths are relative to, `header` the report
  // itself where there is no suite, else null.
  CaseReport(const Json& record, const std::string& folder, const Json& header);

  // An empty object where there is no report.
  const Json& json() const { return m_report; }

  // The path of a file of the run: in the workspace of the case, also where the results have been
  // moved since, or where it was then.
  std::string PathOf(const std::string& path) const;

  // The report's entry of a file, by its name as the routine opens it; an empty object for none.
  Json Output(const std::string& name) const;
  Json Input(const std::string& path) const;

  // How to read a file that is described by such an entry.
  MeasuredSource Source(const std::string& path, const Json& entry) const;

  // The last lines of what the routine logged.
  std::string LogTail() const;

 private:
  Json m_report = Json::object();
  std::string m_workspace;  // Where it is today.
};

}  // namespace host
