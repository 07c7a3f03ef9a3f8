#include "results/line_cutter.h"

namespace host {

void LineCutter::Add(std::string_view bytes,
                     const std::function<void(std::string_view line)>& take) {
  while (!bytes.empty()) {
    const size_t end = bytes.find('\n');
    const std::string_view part = bytes.substr(0, end);
    m_tooLong = m_tooLong || m_line.size() + part.size() > kMaxLine;
    if (!m_tooLong) m_line += part;
    if (end == std::string_view::npos) return;
    if (!m_tooLong) take(m_line);
    m_line.clear();
    m_tooLong = false;
    bytes.remove_prefix(end + 1);
  }
}

}  // namespace host
