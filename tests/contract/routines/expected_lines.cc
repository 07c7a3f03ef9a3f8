#include "contract/routines/expected_lines.h"

#include <sstream>

LinesOfRoutines Lines(std::string_view table) {
  std::istringstream text{std::string(table)};
  LinesOfRoutines lines;
  std::string routine;
  for (std::string line; std::getline(text, line);) {
    if (line.rfind("  ", 0) == 0) {
      lines[routine].push_back(line.substr(2));
    } else {
      routine = line;
    }
  }
  return lines;
}
