#pragma once

#include <nlohmann/json.hpp>
#include <string>

// A report, parsed. Fails the test when it is not as the schema that is installed says.
nlohmann::json ParseReport(const std::string& text);
