// What is compared: results of a suite, reports of runs, exported baselines. What is read is
// written as a baseline, read again, and is the same; compared with itself nothing is worse.

#include <algorithm>

#include "base/usage_error.h"
#include "compare/baseline.h"
#include "compare/compare_results.h"
#include "compare/read_results.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 100000;

namespace {

const std::string kFigures =
    R"("figures": [{"file": "out.wav", "channel": 0, "name": "my_sdr", "value": 12.5, "unit": "dB",)"
    R"( "better": "higher", "reason": "", "version": 1, "untrusted": true},)"
    R"( {"file": null, "name": "delay", "value": -1e-3, "unit": "s", "better": "none", "truth": 0}],)"
    R"( "results": [{"name": "kind", "value": "speech", "unit": "", "better": "none", "file": null}],)"
    R"( "guards": [{"name": "clipped", "file": "out.wav", "at": 1, "channel": 0, "fails": false}],)";

std::string Case(const std::string& id, const std::string& verdict) {
  return R"({"id": ")" + id +
         R"(", "routine": "TestZUAec", "arguments": ["near.wav", "far.wav"],)" +
         R"( "cluster": "s1", "verdict": ")" + verdict + R"(", "elapsed": 1.5, "cpu": null, )" +
         kFigures + R"( "outputs": [{"name": "out.wav", "sha256": ")" + std::string(64, 'a') +
         R"("}, {"name": "b.wav", "sha256": null}]})";
}

std::string Suite(const std::string& cases) {
  return R"({"schema_version": 1, "suite": "calls.toml", "started": "2024-05-01T10:00:00Z",)"
         R"( "engine": {"name": "desktop engine", "version": {"value": "1.0"}},)"
         R"( "margins": {"my_sdr": 0.2}, "counts": {"pass": 1}, "cases": [)" +
         cases + "]}";
}

void CheckSame(const host::ResultSet& set) {
  REQUIRE(host::ParseResultSet(host::BaselineText(set), "again").cases.size() == set.cases.size());
  const std::string text = host::BaselineText(set);
  REQUIRE(host::BaselineText(host::ParseResultSet(text, "again")) == text);
}

}  // namespace

std::vector<std::string> Seeds() {
  const std::string report =
      R"({"schema_version": 3, "routine": "TestDrc", "arguments": ["a"], "verdict": "warn",)"
      R"( "elapsed": {"value": 2.5, "unit": "s"}, "cpu": {"value": 1, "unit": "s"}, )" +
      kFigures +
      R"( "outputs": [{"name": "out.wav", "size": {"value": 44}, "sha256": {"value": "ab"}},)"
      R"( {"name": "gone.wav", "size": {"value": null, "reason": "absent"}}]})";
  const std::string two = Suite(Case("c0", "pass") + ",\n" + Case("c1", "fail"));
  const host::ResultSet set = host::ParseResultSet(two, "seed");
  return {Suite(""), Suite(Case("c0", "warn")), two, report, host::BaselineText(set), "{}", ""};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  try {
    const host::ResultSet set = host::ParseResultSet(text, "fuzz");
    for (const auto& [name, margin] : set.margins) REQUIRE(margin >= 0);
    if (!set.origin.report) CheckSame(set);
    const host::Comparison same = host::CompareResults(set, set, {.times = true, .resamples = 10});
    REQUIRE(!host::IsWorse(same.verdict));
    REQUIRE(same.gone.empty() && same.added.empty() && same.fallen.empty() && same.guards.empty());
    REQUIRE(same.otherBytes == 0 && same.cases == set.cases.size());
  } catch (const host::UsageError& error) {
    REQUIRE(error.message.starts_with("fuzz: ") || error.message.starts_with("not comparable: "));
  }
  return 0;
}
