// The user's own measures in a TOML file: refused with a place in the file, or such that each can
// be run.

#include <regex>

#include "base/usage_error.h"
#include "fuzz/fuzz_target.h"
#include "measure/scorer_tables.h"
#include "support/file_bytes.h"

extern const int kIterations = 10000;

std::vector<std::string> Seeds() {
  return {"",
          R"([measure.pesq]
command = ["pesq", "+{rate}", "{reference}", "{output}"]
pattern = 'P\.862\.2.*= *([-0-9.]+)'
unit = "MOS"
higher_is_better = true
rates = [8000, 16000]
timeout_s = 60
)",
          R"toml([measure.a]
command = ["./a.sh", "{input}"]
pattern = '(\d+)'
[measure.b_2]
command = ["b"]
pattern = "([0-9])"
higher_is_better = false
)toml",
          "measure = 5\n",
          "[measure]\nx = 1\n",
          "[margins]\nsnr = 0.1\n"};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  WriteFile("fuzz.toml", std::string(data, data + size));
  try {
    for (const host::Scorer& scorer : host::ReadScorers("fuzz.toml")) {
      REQUIRE(!scorer.name.empty() && !scorer.command.empty());
      REQUIRE(std::regex(scorer.pattern).mark_count() > 0);
      REQUIRE(scorer.seconds > 0 && scorer.seconds <= 1e6);
      for (const int rate : scorer.rates) REQUIRE(rate > 0);
    }
  } catch (const host::UsageError& error) {
    REQUIRE(error.message.starts_with("fuzz.toml:"));
  }
  return 0;
}
