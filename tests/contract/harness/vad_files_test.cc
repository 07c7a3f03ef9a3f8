#include "catalogue/vad_files.h"

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

// As fscanf reads numbers and words: with a sign, over the ends of lines, and no more of a name
// than the batch has room for.
TEST(VadRecordings, ReadsAsTheBatchDoes) {
  EXPECT_THAT(Names(" +2 a.wav +1, -7,\n9,b.wav\n0,"), SizeIs(2));
  EXPECT_THAT(Names("-1 a.wav 0,"), IsEmpty());
  EXPECT_THAT(Names("99999999999999999999 a.wav 0,"), IsEmpty()) << "all bits set: -1";
  EXPECT_THAT(Names("+-1 a.wav 0,"), IsEmpty());
  const std::string name(255, 'n');
  EXPECT_THAT(Names("1 " + name + "more 0,"), ElementsAre("F:/Stream/vad/input/" + name));
}

TEST(VadRecordings, ReadsEachByteOnce) {
  std::string description = "80000\n";
  for (int i = 0; i < 80000; ++i) description += "a.wav 1,2,3,\n";
  EXPECT_THAT(Names(description), SizeIs(80000));
}

// A number that cannot be read is left for what is read next.
TEST(VadRecordings, ReadsOnWhereANumberIsMissing) {
  EXPECT_THAT(Names("2\na.wav 1,7,b.wav 0,\n"),
              ElementsAre("F:/Stream/vad/input/a.wav", "F:/Stream/vad/input/b.wav"));
}

// fscanf takes a sign before it finds that no digit follows, and it takes a zero byte for a letter.
TEST(VadRecordings, ReadsASignWithoutANumberAndAZeroByteAsTheBatchDoes) {
  EXPECT_THAT(Names("2\na.wav -b.wav 0,\n+c.wav 0,\n"),
              ElementsAre("F:/Stream/vad/input/a.wav", "F:/Stream/vad/input/b.wav"));
  EXPECT_THAT(Names("1\n-b.wav 0,\n"), ElementsAre("F:/Stream/vad/input/-b.wav"));
  EXPECT_THAT(Names({"2\na\0.wav 0,\nb.wav 0,\n", 20}),
              ElementsAre("F:/Stream/vad/input/a", "F:/Stream/vad/input/b.wav"));
}
