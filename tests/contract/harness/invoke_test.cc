#include "catalogue/invoke.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

using harness::ArgumentFault;
using harness::Invoke;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Words = std::vector<std::string_view>;

std::vector<std::string> g_calls;

void None() { g_calls.push_back("None"); }

int Text(const char* constant, char* changeable) {
  changeable[0] = '!';
  g_calls.push_back(std::string(constant) + "," + changeable);
  return 1;  // Results are of no interest.
}

void Number(int number) { g_calls.push_back(std::to_string(number)); }

void Narrow(int8_t small, unsigned positive) {
  g_calls.push_back(std::to_string(small) + "," + std::to_string(positive));
}

void Flag(bool flag) { g_calls.push_back(flag ? "yes" : "no"); }

void Codec(AudioLocalCodec::AudioCodecType type) { Number(type); }

void Segments(int* segments, int shift) {
  std::string call = segments == nullptr ? "null" : "";
  for (; segments != nullptr && *segments >= 0; segments += 2) {
    call += std::to_string(segments[0]) + "+" + std::to_string(segments[1]) + " ";
  }
  g_calls.push_back(call + "/" + std::to_string(shift));
}

void Nullable(const char* far, const char* near) {
  g_calls.push_back(std::string(far == nullptr ? "null" : far) + "," + near);
}

class InvokeTest : public testing::Test {
 protected:
  void SetUp() override { g_calls.clear(); }
};

TEST_F(InvokeTest, CallsWithOneWordPerParameter) {
  Invoke<None>({});
  Invoke<Text>(Words({"", "text"}));
  EXPECT_THAT(g_calls, ElementsAre("None", ",!ext"));
}

TEST_F(InvokeTest, SaysHowManyWordsARoutineTakes) {
  EXPECT_EQ(ArgumentFault<None>(Words({"1"})), "takes 0 arguments, not 1");
  EXPECT_EQ(ArgumentFault<Number>({}), "takes 1 argument, not 0");
  EXPECT_EQ(ArgumentFault<Number>(Words({"1", "2"})), "takes 1 argument, not 2");
  EXPECT_EQ(ArgumentFault<None>({}), "");
}

TEST_F(InvokeTest, NamesTheWordThatDoesNotFit) {
  EXPECT_EQ(ArgumentFault<Narrow>(Words({"1", "x"})),
            "argument 2 of 2 must be a whole number, not \"x\"");
  EXPECT_EQ(ArgumentFault<Flag>(Words({"yes"})),
            "argument 1 of 1 must be true or false, not \"yes\"");
  EXPECT_THAT(ArgumentFault<Codec>(Words({"MP3"})), HasSubstr("SILK_CODEC (2)"));
}

TEST_F(InvokeTest, CallsNothingWhenTheWordsDoNotFit) {
  Invoke<None>(Words({"1"}));
  Invoke<Number>({});
  Invoke<Number>(Words({"seven"}));
  EXPECT_THAT(g_calls, IsEmpty());
}

TEST_F(InvokeTest, TakesDecimalIntegersThatFit) {
  Invoke<Number>(Words({"-2147483648"}));
  Invoke<Narrow>(Words({"-128", "4294967295"}));
  EXPECT_THAT(g_calls, ElementsAre("-2147483648", "-128,4294967295"));
}

TEST_F(InvokeTest, RefusesWhatIsNoFittingInteger) {
  for (const char* word :
       {"", "x", "1x", "1.0", " 1", "0x10", "2147483648", "-2147483649", "--1"}) {
    EXPECT_NE(ArgumentFault<Number>(Words({word})), "") << word;
  }
  EXPECT_NE(ArgumentFault<Narrow>(Words({"128", "1"})), "");
  EXPECT_NE(ArgumentFault<Narrow>(Words({"1", "-1"})), "");
}

TEST_F(InvokeTest, TakesTrueAndFalseOnly) {
  Invoke<Flag>(Words({"true"}));
  Invoke<Flag>(Words({"false"}));
  for (const char* word : {"", "1", "0", "True", "yes"}) {
    EXPECT_NE(ArgumentFault<Flag>(Words({word})), "") << word;
  }
  EXPECT_THAT(g_calls, ElementsAre("yes", "no"));
}

TEST_F(InvokeTest, TakesEnumeratorsByNameAndByValue) {
  for (const char* word : {"WAV_CODEC", "255", "UNKNOWN_CODEC", "-1", "AAC_LC_CODEC"}) {
    Invoke<Codec>(Words({word}));
  }
  EXPECT_THAT(g_calls, ElementsAre("255", "255", "-1", "-1", "35"));
  for (const char* word : {"", "3", "wav_codec", "0255", "WAV_CODEC "}) {
    EXPECT_NE(ArgumentFault<Codec>(Words({word})), "") << word;
  }
}

TEST_F(InvokeTest, KnowsEveryEnumeratorOfTheLocalCodecs) {
  const std::pair<const char*, const char*> codecs[] = {
      {"UNKNOWN_CODEC", "-1"}, {"SPEEX_CODEC_8", "0"}, {"AAC_PLUS_CODEC", "1"},
      {"SILK_CODEC", "2"},     {"AAC_ELD_CODEC", "4"}, {"SPEEX_CODEC_4", "21"},
      {"SPEEX_CODEC_2", "23"}, {"AAC_LC_CODEC", "35"}, {"AAC_AUDIT_CODEC", "36"},
      {"WAV_CODEC", "255"}};
  std::string all;
  for (const auto& [name, value] : codecs) {
    g_calls.clear();
    Invoke<Codec>(Words({name}));
    Invoke<Codec>(Words({value}));
    EXPECT_THAT(g_calls, ElementsAre(value, value)) << name;
    all += std::string(name) + " (" + value + ")" + (std::string(value) == "255" ? "" : ", ");
  }
  EXPECT_THAT(ArgumentFault<Codec>(Words({"MP3"})), HasSubstr(all));
}

TEST_F(InvokeTest, TakesAListOfSegmentsOrNone) {
  Invoke<Segments>(Words({"none", "3"}));
  Invoke<Segments>(Words({"1200,5000,9000,4000", "0"}));
  EXPECT_THAT(g_calls, ElementsAre("null/3", "1200+5000 9000+4000 /0"));
}

TEST_F(InvokeTest, RefusesWhatIsNoListOfSegments) {
  std::string most = "0,1";
  for (int pair = 1; pair < 15; ++pair) most += ",0,1";
  EXPECT_EQ(ArgumentFault<Segments>(Words({most, "0"})), "");
  const std::string tooMany = most + ",0,1";
  for (const std::string_view word :
       {"", "1", "1,2,3", "1,-2", "-1,2", "1,2,", ",1,2", "1,,2", "a,b", "1;2", "null"}) {
    EXPECT_NE(ArgumentFault<Segments>(Words({word, "0"})), "") << word;
  }
  EXPECT_NE(ArgumentFault<Segments>(Words({tooMany, "0"})), "");
}

TEST_F(InvokeTest, TakesNoneForTheNullableNameAlone) {
  const harness::Routine<Nullable> routine = {
      {"void", "Nullable", "const char* far, const char* near"}};
  const harness::CatalogueRow row = {.declared = routine, .nullable = "far"};
  harness::Run(row, Words({"none", "none"}));
  harness::Run({.declared = routine}, Words({"none", "x"}));
  EXPECT_THAT(g_calls, ElementsAre("null,none", "none,x"));
}

}  // namespace
