#include "run/named_files.h"

#include <gmock/gmock.h>

#include <functional>

#include "base/usage_error.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<FilePlace> Places(const std::vector<std::string>& names) {
  std::vector<FilePlace> places;
  for (const std::string& name : names)
    places.push_back({.use = {.name = name}, .name = name, .path = name});
  return places;
}

// "0=a.wav 1=b.wav", or the message of the fault.
std::string Named(const std::vector<std::string>& words, const std::vector<FilePlace>& places) {
  try {
    std::string text;
    for (const NamedFile& file : NameFiles("--in", words, places).files) {
      text += (text.empty() ? "" : " ") + std::to_string(file.index) + "=" + file.path;
    }
    return text;
  } catch (const UsageError& error) {
    return error.message;
  }
}

TEST(NameFiles, FillsTheDeclaredOrder) {
  const std::vector<FilePlace> places = Places({"near.wav", "C:\\aec\\far.wav", "/x/third.wav"});
  EXPECT_EQ(Named({"a", "b"}, places), "0=a 1=b");
  EXPECT_EQ(Named({"a", "far.wav=b", "c"}, places), "0=a 1=b 2=c");
  EXPECT_EQ(Named({"C:\\aec\\far.wav=b", "/x/third.wav=c"}, places), "1=b 2=c");
  EXPECT_EQ(Named({"a", "b", "c", "d"}, places), "--in d: the routine has no further input");
  EXPECT_EQ(Named({"a"}, {}), "--in a: the routine reads no file");
}

// A file may be called so.
TEST(NameFiles, ANameIsOneOnlyIfAFileIsCalledSo) {
  const std::vector<FilePlace> places = Places({"near.wav", "far.wav"});
  EXPECT_EQ(Named({"take=2.wav", "far.wav=x=y.wav"}, places), "0=take=2.wav 1=x=y.wav");
  EXPECT_EQ(Named({"near.wav=a", "near.wav=b"}, places), "--in names near.wav twice");
  EXPECT_EQ(Named({"near.wav="}, places), "--in near.wav= is without its file");
}

TEST(NameFiles, ANameMayHoldWhatEndsNames) {
  const std::vector<FilePlace> places = Places({"take.wav", "take=2.wav", "last="});
  EXPECT_EQ(Named({"take=2.wav=a"}, places), "1=a");
  EXPECT_EQ(Named({"last==b=c"}, places), "2=b=c");
}

TEST(NameFiles, ALastComponentThatTwoShareIsRefused) {
  const std::vector<FilePlace> places = Places({"a/in.wav", "b/in.wav"});
  EXPECT_EQ(Named({"in.wav=x"}, places),
            "--in in.wav: both a/in.wav and b/in.wav are called so; give the whole name");
  EXPECT_EQ(Named({"b/in.wav=x"}, places), "1=x");
}

TEST(NameFiles, AFolderIsForAList) {
  std::vector<FilePlace> places = Places({"text", "list/1.pcm", "list/2.pcm"});
  places[1].use.pattern = places[2].use.pattern = "list/<n>.pcm";
  const std::vector<std::string> words = {"a.txt", "folder", "list/2.pcm=b"};
  const NamedFiles named = NameFiles("--in", words, places);
  EXPECT_THAT(named.folders, ElementsAre("folder"));
  ASSERT_EQ(named.files.size(), 2u);
  EXPECT_EQ(named.files[1].index, 2u);
}

class CompleteArgumentsTest : public testing::Test {
 protected:
  static std::vector<std::string> Completed(const char* routine,
                                            const std::vector<std::string>& arguments,
                                            const std::vector<std::string>& in) {
    for (const CatalogueRow& row : Catalogue()) {
      if (row.declared.words.name == routine) return CompleteArguments(row, arguments, in);
    }
    ADD_FAILURE() << routine;
    return {};
  }
};

TEST_F(CompleteArgumentsTest, FillInThoseThatNameFiles) {
  EXPECT_THAT(Completed("Copy", {}, {"song.flac"}), ElementsAre("inFile.pcm", "outFile.pcm"));
  EXPECT_THAT(Completed("ReadBoth", {}, {"a", "b"}), ElementsAre("first", "second"));
  EXPECT_THAT(Completed("Nothing", {}, {}), IsEmpty());
}

TEST_F(CompleteArgumentsTest, LeaveTheLongFormAsItIs) {
  EXPECT_THAT(Completed("Copy", {"a.pcm", "b.pcm"}, {"song.flac"}), ElementsAre("a.pcm", "b.pcm"));
  EXPECT_THAT(Completed("Copy", {"a.pcm"}, {"song.flac"}), ElementsAre("a.pcm"));
}

// The row says that there may be none.
TEST_F(CompleteArgumentsTest, AFileThatMayBeNoneIsNoneUnlessItIsGiven) {
  EXPECT_THAT(Completed("GoWithout", {}, {}), ElementsAre("none"));
  EXPECT_THAT(Completed("GoWithout", {}, {"song.flac"}), ElementsAre("inFile.pcm"));
  EXPECT_THAT(Completed("GoWithout", {}, {"inFile=song.flac"}), ElementsAre("inFile.pcm"));
}

}  // namespace
}  // namespace host
