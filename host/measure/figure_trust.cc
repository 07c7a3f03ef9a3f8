#include "measure/figure_trust.h"

namespace host {

bool IsUntrusted(std::string_view /*measure*/) { return true; }

}  // namespace host
