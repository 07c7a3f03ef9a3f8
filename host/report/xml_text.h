#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace host {

// Text that XML takes: control characters but the ends of lines are written as escapes, and so are
// U+FFFE and U+FFFF.
std::string XmlText(std::string_view text);

// An attribute, and a child that holds nothing but text.
void SetAttribute(pugi::xml_node node, const char* name, const std::string& text);
void AddText(pugi::xml_node node, const char* name, const std::string& text);

}  // namespace host
