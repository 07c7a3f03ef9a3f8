#include "compare/margins.h"

namespace host {

double MarginOfMeasure(const std::string& /*name*/) { return 0; }

}  // namespace host
