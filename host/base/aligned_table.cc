#include "base/aligned_table.h"

#include <algorithm>
#include <cctype>

#include "base/printable.h"

namespace host {

namespace {

bool IsNumber(const std::string& text) {
  return text == "-" ||
         (!text.empty() && text.find_first_not_of("+-.0123456789e") == std::string::npos);
}

// Letters as a terminal counts them: the bytes of UTF-8 that start one.
size_t Width(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

AlignedTable::AlignedTable(std::vector<std::string> heads) : m_rows{std::move(heads)} {}

void AlignedTable::Add(std::vector<std::string> row) {
  for (std::string& text : row) text = Printable(text);
  m_rows.push_back(std::move(row));
}

std::string AlignedTable::Text() const {
  return Lines([](const std::string& cell, size_t /*column*/) { return cell; });
}

std::string AlignedTable::Text(const Paint& paint, size_t painted) const {
  return Lines([&](const std::string& cell, size_t column) {
    const size_t end = std::min(cell.find_first_of(" ,"), cell.size());
    return column != painted ? cell : paint.Word(cell.substr(0, end)) + cell.substr(end);
  });
}

std::string AlignedTable::Lines(
    const std::function<std::string(const std::string&, size_t)>& painted) const {
  const size_t columns = m_rows.front().size();
  std::vector<size_t> widths(columns);
  std::vector<bool> right(columns, true);
  for (const auto& row : m_rows) {
    for (size_t i = 0; i < columns; ++i) {
      widths[i] = std::max(widths[i], Width(row[i]));
      if (&row != &m_rows.front()) right[i] = right[i] && IsNumber(row[i]);
    }
  }
  std::string text;
  for (const auto& row : m_rows) {
    std::string line;
    for (size_t i = 0; i < columns; ++i) {
      const std::string space(widths[i] - Width(row[i]), ' ');
      const bool head = &row == &m_rows.front();
      const std::string cell = head ? row[i] : painted(row[i], i);
      line += (i > 0 ? "  " : "") + (right[i] ? space + cell : cell + space);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace host
