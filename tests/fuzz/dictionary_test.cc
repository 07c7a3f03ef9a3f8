#include "fuzz/dictionary.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "support/file_bytes.h"
#include "support/temporary_directory.h"

using testing::ElementsAre;
using testing::ThrowsMessage;

TEST(Dictionary, ReadsWordsInLibFuzzersForm) {
  const TemporaryDirectory directory;
  WriteFile("d", "# a remark\n\nchunk=\"data\"\n\"\\x00\\xfF\"\nquote = \"\\\"\\\\\"\n");
  EXPECT_THAT(ReadDictionary("d"),
              ElementsAre("data", std::string("\0\xff", 2), std::string("\"\\")));
}

TEST(Dictionary, RefusesOtherLines) {
  const TemporaryDirectory directory;
  for (const char* line :
       {"data", "\"data", "\"\"", "\"a\"b\"", "\"\\n\"", "\"\\x0\"", "\"\\x-1\""}) {
    WriteFile("d", "\"good\"\n" + std::string(line) + "\n");
    EXPECT_THAT([] { ReadDictionary("d"); },
                ThrowsMessage<std::runtime_error>("d, line 2: no word"))
        << line;
  }
  EXPECT_THAT([] { ReadDictionary("absent"); },
              ThrowsMessage<std::runtime_error>("absent: cannot be read"));
}
