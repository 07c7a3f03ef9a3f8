#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "files/known_digest.h"
#include "suite/case_work.h"
#include "support/file_bytes.h"
#include "support/temporary_directory.h"

namespace host {
namespace {

// Whether this process has to read a file to know its digest.
bool MustBeRead(const char* path) {
  bool read = false;
  const int file = open(path, O_RDONLY);
  KnownDigestOf(file, [&read] { return read = true; });
  close(file);
  return read;
}

TEST(SharedSources, AreReadBeforeTheProcessesOfTheirCases) {
  const TemporaryDirectory directory;
  for (const char* const name : {"shared", "own", "other"}) WriteFile(name, name);
  usleep(50'000);  // What is written from now on gets another date.
  const std::vector<SuiteCase> cases = {
      {.id = "a", .inputs = {{"in.wav", "shared"}, {"far.wav", "own"}}},
      {.id = "b", .inputs = {{"in.wav", "shared"}, {"far.wav", "missing"}}},
      {.id = "c", .inputs = {{"in.wav", "missing"}, {"far.wav", "."}}},
      {.id = "d", .inputs = {{"in.wav", "other"}, {"far.wav", "."}}}};
  const SharedSources sources(cases);
  for (const SuiteCase& one : cases) sources.ReadOf(one);
  EXPECT_FALSE(MustBeRead("shared"));
  EXPECT_TRUE(MustBeRead("own"));
  EXPECT_TRUE(MustBeRead("other"));
}

}  // namespace
}  // namespace host
