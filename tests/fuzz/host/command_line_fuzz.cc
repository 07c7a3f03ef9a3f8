// The words of a command line, one a line of the input.

#include <algorithm>

#include "cli/request.h"
#include "fuzz/fuzz_target.h"

extern const int kIterations = 3000;

namespace {

using Words = std::vector<std::string>;

Words Lines(const std::string& input) {
  Words words;
  for (size_t at = 0; at < input.size();) {
    const size_t end = std::min(input.find('\n', at), input.size());
    words.push_back(input.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

// What holds for every run that can be asked for.
void CheckRun(const host::Case& run, const Words& words) {
  REQUIRE(!run.work.empty());
  REQUIRE(!run.timeout || (*run.timeout > 0 && *run.timeout <= 1e6));
  REQUIRE(!run.linger || (*run.linger > 0 && *run.linger <= 1e6));
  for (const std::string& argument : run.arguments) {
    REQUIRE(std::find(words.begin(), words.end(), argument) != words.end());
  }
}

// After "--" every word is an argument, whatever it looks like.
void CheckLiteral(const Words& words) {
  Words run = {"run", "--wait", "--"};
  run.insert(run.end(), words.begin(), words.end());
  const host::Request request = host::ParseRequest(run);
  REQUIRE(request.command == host::Request::Command::kRun && request.run.wait);
  Words read = {request.run.routine};
  read.insert(read.end(), request.run.arguments.begin(), request.run.arguments.end());
  REQUIRE(read == (words.empty() ? Words{host::Case().routine} : words));
}

}  // namespace

std::vector<std::string> Seeds() {
  return {"",
          "help\nrun",
          "--version",
          "list\nTest*Reverb*\n--group\naec\n--available",
          "list\n--json",
          "describe\nTestHRTF",
          "demo\n--work\nfolder",
          "run\nTestVADProcess\nin.wav\nout.wav\nnone\n--work=w\n--timeout-s\n10",
          "run\nTestVADCodec\n-1\n-.5\n--json=-\n--linger-s=0.5\n--wait\n--wav\n--figures",
          "run\n--json\na\n--\n--wav\n--"};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Words words = Lines(std::string(data, data + size));
  try {
    const host::Request request = host::ParseRequest(words);
    REQUIRE(!words.empty());
    using Command = host::Request::Command;
    REQUIRE((request.command == Command::kPrint) == !request.text.empty());
    if (request.command == Command::kRun) CheckRun(request.run, words);
    if (request.command == Command::kDescribe) REQUIRE(!request.routine.empty());
  } catch (const host::RefusedRequest& refused) {
    REQUIRE(words.front() == "run" && !refused.message.empty());
    for (const std::string& report : refused.reports) REQUIRE(!report.empty());
  } catch (const host::UsageError& error) {
    REQUIRE(words.empty() || words.front() != "run");
    REQUIRE(!error.message.empty());
  }
  CheckLiteral(words);
  return 0;
}
