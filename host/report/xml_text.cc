#include "report/xml_text.h"

#include <algorithm>

#include "base/printable.h"

namespace host {

std::string XmlText(std::string_view text) {
  std::string good;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    std::string line = Printable(text.substr(at, end - at));
    for (const auto& [bad, escape] :
         {std::pair{"\xEF\xBF\xBE", "\\ufffe"}, {"\xEF\xBF\xBF", "\\uffff"}}) {
      for (size_t found = 0; (found = line.find(bad)) != std::string::npos;) {
        line.replace(found, 3, escape);
      }
    }
    good += line + (end < text.size() ? "\n" : "");
    at = end + 1;
  }
  return good;
}

void SetAttribute(pugi::xml_node node, const char* name, const std::string& text) {
  node.append_attribute(name).set_value(XmlText(text).c_str());
}

void AddText(pugi::xml_node node, const char* name, const std::string& text) {
  node.append_child(name).text().set(XmlText(text).c_str());
}

}  // namespace host
