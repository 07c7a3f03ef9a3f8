#include "measure/drawing.h"

#include <cmath>
#include <cstdio>

#include "report/xml_text.h"

namespace host {

namespace {

std::string Attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + Coordinate(value) + "\"";
}

std::string Attribute(const char* name, std::string_view value) {
  return std::string(" ") + name + "=\"" + std::string(value) + "\"";
}

// As the content of an element.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char letter : XmlText(text)) {
    if (letter == '&') {
      escaped += "&amp;";
    } else if (letter == '<') {
      escaped += "&lt;";
    } else {
      escaped += letter;
    }
  }
  return escaped;
}

}  // namespace

std::string Coordinate(double value) {
  char text[32];
  snprintf(text, sizeof text, "%.10g", std::round(value * 100) / 100);
  return text;
}

void Drawing::Text(Point at, Anchor anchor, const std::string& text, int size) {
  constexpr const char* kAnchors[] = {"start", "middle", "end"};
  m_body += "<text" + Attribute("x", at.x) + Attribute("y", at.y) +
            Attribute("text-anchor", kAnchors[static_cast<int>(anchor)]) +
            Attribute("font-size", size) + ">" + Escaped(text) + "</text>\n";
}

void Drawing::Line(Point from, Point to, std::string_view colour) {
  m_body += "<line" + Attribute("x1", from.x) + Attribute("y1", from.y) + Attribute("x2", to.x) +
            Attribute("y2", to.y) + Attribute("stroke", colour) + "/>\n";
}

void Drawing::Box(Point corner, double width, double height, std::string_view fill,
                  std::string_view border) {
  m_body += "<rect" + Attribute("x", corner.x) + Attribute("y", corner.y) +
            Attribute("width", width) + Attribute("height", height) + Attribute("fill", fill) +
            Attribute("stroke", border) + "/>\n";
}

void Drawing::Path(const std::string& path, std::string_view fill, std::string_view stroke) {
  m_body += "<path" + Attribute("d", path) + Attribute("fill", fill) + Attribute("stroke", stroke) +
            "/>\n";
}

void Drawing::Grid(Point corner, double width, double height, const std::string& path,
                   std::string_view fill) {
  char transform[160];
  snprintf(transform, sizeof transform, "translate(%.10g %.10g) scale(%.10g %.10g)", corner.x,
           corner.y, width, height);
  m_body += "<path" + Attribute("transform", transform) + Attribute("d", path) +
            Attribute("fill", fill) + " shape-rendering=\"crispEdges\"/>\n";
}

std::string Drawing::Svg(double height) const {
  const std::string size = Coordinate(m_width) + "\" height=\"" + Coordinate(height);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" viewBox=\"0 0 " +
         Coordinate(m_width) + " " + Coordinate(height) +
         "\" font-family=\"sans-serif\">\n<rect width=\"" + size + "\" fill=\"white\"/>\n" +
         m_body + "</svg>\n";
}

}  // namespace host
