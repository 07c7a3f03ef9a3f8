// What a suite has left while it ran, of which a part may be torn, edited or of an earlier version:
// its plan up to the first empty line of an input, what has ended after it. Whatever is in it, it
// is read and written as results, or refused in words.

#include <filesystem>

#include "base/usage_error.h"
#include "fuzz/fuzz_target.h"
#include "suite/suite_journal.h"
#include "suite/suite_results.h"
#include "support/file_bytes.h"

extern const int kIterations = 4000;

namespace {

const std::string kHeader =
    R"({"schema_version":1,"bench":{},"engine":{},"started":"2024-05-01T10:00:00Z","command":["s"],)"
    R"("suite":"s.toml","shard":{"index":1,"of":2},"margins":{"snr":0.1},"chosen":2,"selection":"ab"})";

std::string Planned(const std::string& index) {
  return R"({"id":"c)" + index + R"(","index":)" + index +
         R"(,"routine":"TestDrc","arguments":["a"],"group":"effects","tags":["t"],"known":null,)"
         R"("cluster":null,"verdict":"not_run","exit_code":null,"cause":"not_run","reason":"x",)"
         R"("report":"","elapsed":null,"cpu":null,"rtf":null,"rtf_cpu":null,"results":[],)"
         R"("guards":[],"figures":[],"outputs":[]})"
         "\n";
}

std::string Ended(const std::string& index, const std::string& verdict) {
  return R"({"id":"c)" + index + R"(","index":)" + index +
         R"(,"routine":"TestDrc","arguments":["a"],"group":"effects","tags":[],"known":"so",)"
         R"("cluster":"k","verdict":")" +
         verdict +
         R"(","exit_code":1,"cause":"died","reason":"\"}{","report":"r.json","elapsed":1.5,"cpu":1,)"
         R"("rtf":0.1,"rtf_cpu":0.2,"results":[{"name":"n","value":"t","unit":""}],)"
         R"("guards":[{"name":"click","file":"o","at":1.5,"channel":null}],)"
         R"("figures":[{"name":"snr","value":null,"channel":1}],)"
         R"("outputs":[{"name":"o","path":"cases/o"}],"fingerprint":"f","log_tail":"l\n"})"
         "\n";
}

}  // namespace

std::vector<std::string> Seeds() {
  const std::string plan = kHeader + "\n" + Planned("0") + Planned("1");
  return {plan,
          plan + "\n" + Ended("1", "pass") + Ended("0", "fail"),
          plan + "\n" + Ended("0", "error").substr(0, 100),
          "{}\n{\"index\":0}\n\n" + Ended("0", "warn"),
          "{}\n\n",
          ""};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  const size_t end = text.find("\n\n");
  WriteFile("plan.jsonl", text.substr(0, end == std::string::npos ? end : end + 1));
  std::filesystem::remove("cases.jsonl");
  if (end != std::string::npos) WriteFile("cases.jsonl", text.substr(end + 2));
  try {
    const host::SuiteJournal journal(".");
    const host::SuiteCounts& counts = journal.counts();
    REQUIRE(counts.Ended() + counts.notRun == journal.size());
    for (size_t at = 1; at < journal.size(); ++at)
      REQUIRE(journal.Index(at - 1) <= journal.Index(at));
    for (size_t at = 0; at < journal.size(); ++at) {
      const host::Json record = journal.Read(at);
      REQUIRE(record.at("id").is_string() && record.at("figures").is_array());
      REQUIRE(record.at("index") == journal.Index(at));
    }
    host::WriteResults(journal, ".");
  } catch (const host::UsageError& error) {
    REQUIRE(!error.message.empty());
  }
  return 0;
}
