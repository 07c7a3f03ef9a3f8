#include "report/csv_field.h"

namespace host {

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char letter : text) field += letter == '"' ? "\"\"" : std::string(1, letter);
  return field + "\"";
}

}  // namespace host
