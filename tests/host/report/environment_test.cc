// Which variables a report keeps: what decides how a run goes, and nothing private beside it.

#include "report/environment.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

namespace host {
namespace {

// An environment of these entries for as long as it exists.
class Entries {
 public:
  explicit Entries(std::vector<std::string> entries)
      : m_before(environ), m_texts(std::move(entries)) {
    for (std::string& text : m_texts) m_entries.push_back(text.data());
    m_entries.push_back(nullptr);
    environ = m_entries.data();
  }
  ~Entries() { environ = m_before; }
  Entries(const Entries&) = delete;
  Entries& operator=(const Entries&) = delete;

 private:
  char** m_before;
  std::vector<std::string> m_texts;
  std::vector<char*> m_entries;
};

TEST(Environment, KeepsWhatDecidesHowARunGoes) {
  const std::vector<std::string> names = {"TMPDIR=x",
                                          "LD_PRELOAD=x",
                                          "GLIBC_TUNABLES=x",
                                          "MALLOC_ARENA_MAX=x",
                                          "SOXR_USE_SIMD=x",
                                          "OMP_NUM_THREADS=x",
                                          "GOMP_SPINCOUNT=x",
                                          "PULSE_SERVER=x",
                                          "ASAN_OPTIONS=x",
                                          "LSAN_OPTIONS=x",
                                          "TSAN_OPTIONS=x",
                                          "UBSAN_OPTIONS=x",
                                          "TEMP=x",
                                          "TEMPDIR=x",
                                          "HOME=x",
                                          "DISPLAY=x",
                                          "XDG_RUNTIME_DIR=x",
                                          "XDG_CONFIG_HOME=x"};
  for (const std::string& entry : names) {
    const Entries only({entry});
    EXPECT_EQ(EnvironmentJson().size(), 1U) << entry;
  }
  const Entries all(names);
  EXPECT_EQ(EnvironmentJson().size(), names.size());
}

TEST(Environment, KeepsNothingElse) {
  const Entries entries({"PATH=x", "TEMPO=x", "HOMES=x", "GLIBC_TUNABLES_X=x", "XDG_CACHE_HOME=x",
                         "MYTMP=x", "HOME"});
  EXPECT_EQ(EnvironmentJson(), Json::object());
}

TEST(Environment, KeepsValuesWholeAndInTheOrderOfTheirNames) {
  const Entries entries({"TMP=a=b", "HOME=", "LD_DEBUG=all"});
  EXPECT_EQ(EnvironmentJson().dump(), R"({"HOME":"","LD_DEBUG":"all","TMP":"a=b"})");
}

}  // namespace
}  // namespace host
