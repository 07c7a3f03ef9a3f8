#pragma once

#include <string>
#include <string_view>

namespace host {

// A place in a picture, in its units, from the upper left corner.
struct Point {
  double x = 0;
  double y = 0;
};

enum class Anchor { kStart, kMiddle, kEnd };

// A picture in SVG that grows downwards.
class Drawing {
 public:
  explicit Drawing(double width) : m_width(width) {}

  void Text(Point at, Anchor anchor, const std::string& text, int size = 12);
  void Line(Point from, Point to, std::string_view colour);
  void Box(Point corner, double width, double height, std::string_view fill,
           std::string_view border = "none");
  // `path` is the data of a path.
  void Path(const std::string& path, std::string_view fill, std::string_view stroke);
  // The same with whole numbers for places, each of `width` by `height` from `corner` on.
  void Grid(Point corner, double width, double height, const std::string& path,
            std::string_view fill);

  // The whole document.
  std::string Svg(double height) const;

 private:
  double m_width;
  std::string m_body;
};

// As short as it can be at a hundredth of a unit.
std::string Coordinate(double value);

}  // namespace host
