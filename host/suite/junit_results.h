#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "base/json_parts.h"

namespace host {

// Results in the form that Jenkins reads as those of JUnit: a testsuite for each group. What passes
// with a warning has a system-out; known failures and what has not run are skipped.
class JunitResults {
 public:
  // `started` as the header of a plan has it.
  JunitResults(FILE* file, const std::string& started);
  ~JunitResults();
  JunitResults(const JunitResults&) = delete;
  JunitResults& operator=(const JunitResults&) = delete;

  void Add(const Json& record);

  // False when something could not be kept until then.
  bool End();

 private:
  struct Group {
    FILE* cases = nullptr;  // Without a name; the cases so far.
    size_t tests = 0;
    size_t failures = 0;
    size_t errors = 0;
    size_t skipped = 0;
    double seconds = 0;
  };
  bool Write(const std::string& name, const Group& group);

  FILE* m_file;
  std::string m_started;
  std::map<std::string, Group> m_groups;
  bool m_good = true;
};

}  // namespace host
