#include "compare/result_set.h"

namespace host {

int TextTable::Number(std::string_view text) {
  const auto [entry, isNew] =
      m_numbers.try_emplace(std::string(text), static_cast<int>(m_texts.size()));
  if (isNew) m_texts.emplace_back(text);
  return entry->second;
}

int TextTable::Find(std::string_view text) const {
  const auto entry = m_numbers.find(std::string(text));
  return entry == m_numbers.end() ? kNone : entry->second;
}

}  // namespace host
