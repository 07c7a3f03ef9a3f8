#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "base/paint.h"

namespace host {

// A table for readers, its columns as wide as what is in them.
class AlignedTable {
 public:
  explicit AlignedTable(std::vector<std::string> heads);

  // As many as there are heads.
  void Add(std::vector<std::string> row);

  // All rows, numbers to the right and words to the left of their columns.
  std::string Text() const;

  // The same with the first word of each cell of a column painted.
  std::string Text(const Paint& paint, size_t painted) const;

 private:
  std::string Lines(const std::function<std::string(const std::string&, size_t)>& painted) const;

  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace host
