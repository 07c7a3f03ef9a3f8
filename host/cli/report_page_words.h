#pragma once

#include <string>

namespace CLI {
class App;
}

namespace host {

struct ReportPageOptions;

// Declares the words after `report`, and after `open`, which takes a folder or a page.
void AddReportPage(CLI::App& app, ReportPageOptions& options);
void AddOpen(CLI::App& app, std::string& page);

}  // namespace host
