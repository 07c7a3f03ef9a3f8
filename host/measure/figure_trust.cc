#include "measure/figure_trust.h"

#include "selftest/trust.h"

namespace host {

bool IsUntrusted(std::string_view measure) { return Untrusted(measure); }

}  // namespace host
