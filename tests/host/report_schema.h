#pragma once

#include <nlohmann/json.hpp>
#include <string>

// A report, parsed. Fails the test when it is not as the schema that is installed says.
nlohmann::json ParseReport(const std::string& text);

// The same for the results of a suite.
nlohmann::json ParseResults(const std::string& text);

// The same for figures of measure.
nlohmann::json ParseMeasured(const std::string& text);

// The same for a comparison.
nlohmann::json ParseComparison(const std::string& text);

// The same for the controls of the measures.
nlohmann::json ParseSelftest(const std::string& text);

// The same for what the controls have found.
nlohmann::json ParseControls(const std::string& text);
