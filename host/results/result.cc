#include "results/result.h"

namespace host {

const char* BetterName(Better better) {
  switch (better) {
    case Better::kHigher:
      return "higher";
    case Better::kLower:
      return "lower";
    case Better::kNone:
      break;
  }
  return "none";
}

}  // namespace host
