#include "harness/catalogue/vad_files.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::vector<std::string> Names(std::string_view description) {
  std::vector<std::string> names;
  for (const harness::FileUse& use : harness::VadRecordings(description)) {
    names.push_back(use.name);
  }
  return names;
}

}  // namespace

TEST(VadRecordings, ListsWhatTheBatchOpens) {
  EXPECT_THAT(Names("2\na.wav 2,1200,5000,9000,4000,\nb.wav\t0,\n"),
              ElementsAre("F:/Stream/vad/input/a.wav", "F:/Stream/vad/input/b.wav"));
  EXPECT_THAT(Names("1\na.wav 0,\nb.wav 0,\n"), SizeIs(1));
  EXPECT_THAT(Names("2\na.wav -3,\nb.wav 0,\n"), SizeIs(2));
}

TEST(VadRecordings, EndsWhereTheBatchEnds) {
  EXPECT_THAT(Names(""), IsEmpty());
  EXPECT_THAT(Names("none"), IsEmpty());
  EXPECT_THAT(Names("1000000000\na.wav 0,\n"), SizeIs(1));
  EXPECT_THAT(Names("3\na.wav 15,\nb.wav 16,\nc.wav 0,\n"),
              ElementsAre("F:/Stream/vad/input/a.wav"));
}

// A number that cannot be read is left for what is read next.
TEST(VadRecordings, ReadsOnWhereANumberIsMissing) {
  EXPECT_THAT(Names("2\na.wav 1,7,b.wav 0,\n"),
              ElementsAre("F:/Stream/vad/input/a.wav", "F:/Stream/vad/input/b.wav"));
}
