#include "report/figure_json.h"

namespace host {

Json FigureJson(const MeasuredFigure& figure) {
  Json json = {{"file", figure.file.empty() ? Json() : Json(figure.file)},
               {"channel", figure.channel ? Json(*figure.channel) : Json()},
               {"name", figure.name},
               {"value", figure.value ? Json(*figure.value) : Json()},
               {"unit", figure.unit},
               {"better", figure.better},
               {"reason", figure.reason.empty() ? Json() : Json(figure.reason)},
               {"version", figure.version},
               {"untrusted", figure.untrusted}};
  if (figure.truth) json["truth"] = *figure.truth;
  return json;
}

}  // namespace host
