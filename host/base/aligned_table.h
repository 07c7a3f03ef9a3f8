#pragma once

#include <string>
#include <vector>

namespace host {

// A table for readers, its columns as wide as what is in them.
class AlignedTable {
 public:
  explicit AlignedTable(std::vector<std::string> heads);

  // As many as there are heads.
  void Add(std::vector<std::string> row);

  // All rows, numbers to the right and words to the left of their columns.
  std::string Text() const;

 private:
  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace host
