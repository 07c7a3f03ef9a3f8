#include "report/verdict.h"

namespace host {

const char* VerdictName(Verdict verdict) {
  switch (verdict) {
    case Verdict::kPass:
      return "pass";
    case Verdict::kFail:
      return "fail";
    case Verdict::kError:
      return "error";
    case Verdict::kSkip:
      return "skip";
  }
  return "";
}

}  // namespace host
