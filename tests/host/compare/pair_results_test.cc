#include "compare/pair_results.h"

#include <gmock/gmock.h>

#include "synthetic_results.h"

namespace host {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

PairedResults PairAll(const std::vector<Json>& a, const std::vector<Json>& b) {
  return PairResults(SetOf(ResultsJson(a)), SetOf(ResultsJson(b)));
}

PairedResults Pair(const Json& a, const Json& b) { return PairAll({a}, {b}); }

// "case file name" of each, without what is empty.
std::vector<std::string> Places(const std::vector<OnlyThere>& list) {
  std::vector<std::string> places;
  for (const OnlyThere& each : list) {
    places.push_back(each.caseId + (each.file.empty() ? "" : " " + each.file) +
                     (each.name.empty() ? "" : " " + each.name));
  }
  return places;
}

TEST(PairResults, PairsByCaseFileAndName) {
  const auto both = [](double one, double two) {
    return CaseJson("c", {{.value = one, .file = "a.wav"},
                          {.value = two, .file = "b.wav"},
                          {.name = "lsd", .value = 1, .better = "lower", .file = "a.wav"}});
  };
  const PairedResults paired = Pair(both(1, 3), both(2, 6));
  ASSERT_THAT(paired.measures, SizeIs(2));
  // The two files of the case are one value, because they are not independent.
  ASSERT_THAT(paired.measures[0].pairs, SizeIs(1));
  EXPECT_EQ(paired.measures[0].pairs[0].a, 2);
  EXPECT_EQ(paired.measures[0].pairs[0].b, 4);
  EXPECT_EQ(paired.measures[1].kind.name, "lsd");
}

TEST(PairResults, TakesTheMeanOverChannelsWhereThereIsOne) {
  const auto channels = [](double left, double right, double all) {
    return CaseJson(
        "c", {{.value = left, .channel = 0}, {.value = right, .channel = 1}, {.value = all}});
  };
  const PairedResults paired = Pair(channels(1, 2, 10), channels(1, 2, 20));
  ASSERT_THAT(paired.measures, SizeIs(1));
  EXPECT_EQ(paired.measures[0].pairs[0].a, 10);
  EXPECT_EQ(paired.measures[0].pairs[0].b, 20);
}

TEST(PairResults, TakesChannelsEachWithItsOwn) {
  const auto channels = [](double left, double right) {
    return CaseJson("c", {{.value = left, .channel = 0}, {.value = right, .channel = 1}});
  };
  const PairedResults paired = Pair(channels(1, 3), channels(2, 6));
  EXPECT_EQ(paired.measures[0].pairs[0].a, 2);
  EXPECT_EQ(paired.measures[0].pairs[0].b, 4);
}

TEST(PairResults, ListsWhatIsGoneOnce) {
  Json whole = CaseJson("c", {{.value = 1}, {.name = "loudness", .value = -23, .file = {}}});
  Json less = whole;
  less["figures"] = Json::array();
  EXPECT_THAT(Places(Pair(whole, less).gone),
              testing::UnorderedElementsAre("c out.wav my_sdr", "c loudness"));
  // With the file go its figures.
  less["outputs"] = Json::array();
  EXPECT_THAT(Places(Pair(whole, less).gone),
              testing::UnorderedElementsAre("c out.wav", "c loudness"));
  EXPECT_THAT(Places(PairAll({whole, CaseJson("d", {{.value = 1}})}, {whole}).gone),
              testing::ElementsAre("d"));
}

TEST(PairResults, ListsWhatIsNewTheSameWay) {
  const Json less = CaseJson("c", {});
  Json whole = CaseJson("c", {{.value = 1}});
  whole["outputs"].push_back({{"name", "more.wav"}, {"sha256", Json()}});
  const PairedResults paired = PairAll({less}, {whole, CaseJson("d", {})});
  EXPECT_THAT(Places(paired.added),
              testing::UnorderedElementsAre("c out.wav my_sdr", "c more.wav", "d"));
  EXPECT_THAT(paired.gone, IsEmpty());
}

// With a new file come its figures.
TEST(PairResults, ListsANewFileOnce) {
  const Json less = CaseJson("c", {});
  Json whole = CaseJson("c", {{.value = 1, .file = "more.wav"}});
  whole["outputs"].push_back({{"name", "more.wav"}, {"sha256", Json()}});
  EXPECT_THAT(Places(Pair(less, whole).added), testing::ElementsAre("c more.wav"));
}

// Somebody has put figures together by hand: of one thing the first that has a value counts.
TEST(PairResults, TakesTheFirstOfSeveralFiguresOfOneThing) {
  for (const std::optional<int> channel : {std::optional<int>(), std::optional<int>(1)}) {
    const Json one = CaseJson(
        "c",
        {{.channel = channel}, {.value = 2, .channel = channel}, {.value = 7, .channel = channel}});
    const PairedResults paired = Pair(one, one);
    ASSERT_THAT(paired.measures, SizeIs(1));
    EXPECT_EQ(paired.measures[0].pairs[0].a, 2);
    EXPECT_EQ(paired.measures[0].pairs[0].b, 2);
    EXPECT_THAT(paired.gone, IsEmpty());
    EXPECT_THAT(paired.added, IsEmpty());
  }
}

// A mean over the channels in one of both only leaves the channels.
TEST(PairResults, PairsChannelsWhereOneHasNoMean) {
  const Json mean = CaseJson("c", {{.value = 1, .channel = 0}, {.value = 10}});
  const Json channel = CaseJson("c", {{.value = 4, .channel = 0}});
  for (const auto& [a, b] : {std::pair{mean, channel}, {channel, mean}}) {
    const PairedResults paired = Pair(a, b);
    ASSERT_THAT(paired.measures, SizeIs(1));
    EXPECT_EQ(paired.measures[0].pairs[0].a + paired.measures[0].pairs[0].b, 5);
    EXPECT_EQ(paired.gone.size(), a == mean ? 1U : 0U);
    EXPECT_EQ(paired.added.size(), a == mean ? 0U : 1U);
  }
}

// A truth that only one of both names holds for both.
TEST(PairResults, TakesTheTruthOfEither) {
  const auto delay = [](double value, const Json& truth) {
    Json one = CaseJson("c", {{.name = "delay", .value = value, .better = "none", .unit = "ms"}});
    one["figures"][0]["truth"] = truth;
    return one;
  };
  for (const auto& [a, b] :
       {std::pair{delay(95, 90), delay(88, Json())}, {delay(95, Json()), delay(88, 90)}}) {
    const PairedResults paired = Pair(a, b);
    ASSERT_THAT(paired.measures, SizeIs(1));
    EXPECT_TRUE(paired.measures[0].toTruth);
    EXPECT_EQ(paired.measures[0].pairs[0].a, 5);
    EXPECT_EQ(paired.measures[0].pairs[0].b, 2);
  }
  // Where more is better the truth changes nothing.
  Json better = CaseJson("c", {{.value = 3}});
  better["figures"][0]["truth"] = 1;
  EXPECT_FALSE(Pair(better, better).measures[0].toTruth);
  EXPECT_EQ(Pair(better, better).measures[0].pairs[0].a, 3);
}

// A figure without a value is as if it were not there.
TEST(PairResults, AFigureThatHasLostItsValueIsGone) {
  const Json with = CaseJson("c", {{.value = 1}});
  const Json without = CaseJson("c", {{}});
  EXPECT_THAT(Places(Pair(with, without).gone), testing::ElementsAre("c out.wav my_sdr"));
  EXPECT_THAT(Places(Pair(without, with).added), testing::ElementsAre("c out.wav my_sdr"));
  EXPECT_THAT(Pair(without, without).gone, IsEmpty());
  EXPECT_THAT(Pair(without, without).measures, IsEmpty());
}

TEST(PairResults, AChannelThatIsGoneIsAFigureThatIsGone) {
  const Json stereo = CaseJson("c", {{.value = 1, .channel = 0}, {.value = 2, .channel = 1}});
  const Json mono = CaseJson("c", {{.value = 1, .channel = 0}});
  EXPECT_THAT(Places(Pair(stereo, mono).gone), testing::ElementsAre("c out.wav my_sdr"));
  EXPECT_THAT(Places(Pair(mono, stereo).added), testing::ElementsAre("c out.wav my_sdr"));
}

TEST(PairResults, ListsVerdictsThatFell) {
  const auto fallen = [](const std::string& a, const std::string& b) {
    Json one = CaseJson("c", {});
    Json other = one;
    one["verdict"] = a;
    other["verdict"] = b;
    return Pair(one, other).fallen.size();
  };
  for (const auto& [a, b] : {std::pair{"pass", "warn"},
                             {"warn", "fail"},
                             {"fail", "error"},
                             {"pass", "skip"},
                             {"pass", "not_run"},
                             {"skip", "fail"}}) {
    EXPECT_EQ(fallen(a, b), 1U) << a << " " << b;
    EXPECT_EQ(fallen(b, a), 0U) << b << " " << a;
    EXPECT_EQ(fallen(a, a), 0U) << a;
  }
}

TEST(PairResults, ListsGuardsThatAreNewInTheirFile) {
  const auto guarded = [](const std::vector<std::pair<std::string, std::string>>& guards) {
    Json one = CaseJson("c", {});
    for (const auto& [name, file] : guards) {
      one["guards"].push_back(
          {{"name", name}, {"file", file}, {"at", 1.5}, {"channel", Json()}, {"fails", false}});
    }
    return one;
  };
  const PairedResults paired =
      Pair(guarded({{"click", "a.wav"}, {"dc", "a.wav"}}),
           guarded({{"click", "a.wav"}, {"click", "b.wav"}, {"clipped", "a.wav"}}));
  ASSERT_THAT(paired.guards, SizeIs(2));
  EXPECT_EQ(paired.guards[0].name, "click");
  EXPECT_EQ(paired.guards[0].file, "b.wav");
  EXPECT_EQ(paired.guards[1].name, "clipped");
}

TEST(PairResults, CountsFilesOfTheSameBytes) {
  const auto files = [](const std::vector<std::pair<std::string, Json>>& outputs) {
    Json one = CaseJson("c", {});
    one["outputs"] = Json::array();
    for (const auto& [name, digest] : outputs) {
      one["outputs"].push_back({{"name", name}, {"sha256", digest}});
    }
    return one;
  };
  const std::string x(64, '1');
  const std::string y(64, '2');
  const PairedResults paired = Pair(files({{"a", x}, {"b", x}, {"c", Json()}, {"d", x}}),
                                    files({{"d", y}, {"c", Json()}, {"b", x}, {"a", x}}));
  EXPECT_EQ(paired.files, 4U);
  EXPECT_EQ(paired.sameBytes, 2U);
  EXPECT_EQ(paired.otherBytes, 1U);
}

TEST(PairResults, TakesDistancesWhereTheTruthIsKnown) {
  const auto delay = [](double value, const Json& truth) {
    Json one = CaseJson("c", {});
    one["results"] = {{{"name", "delay"},
                       {"value", value},
                       {"unit", "ms"},
                       {"better", "none"},
                       {"file", Json()},
                       {"reason", Json()},
                       {"truth", truth}}};
    return one;
  };
  const PairedResults paired = Pair(delay(95, 90), delay(88, 90));
  ASSERT_THAT(paired.measures, SizeIs(1));
  EXPECT_TRUE(paired.measures[0].toTruth);
  EXPECT_EQ(paired.measures[0].pairs[0].a, 5);
  EXPECT_EQ(paired.measures[0].pairs[0].b, 2);
  EXPECT_FALSE(Pair(delay(95, Json()), delay(88, Json())).measures[0].toTruth);
}

TEST(PairResults, KeepsWhatTellsOfTheMachineApart) {
  const auto timed = [](double rtf) {
    return CaseJson("c", {{.name = "rtf", .value = rtf, .better = "lower", .unit = "1"},
                          {.name = "encode_time", .value = rtf, .better = "lower", .unit = "ms"},
                          {.name = "length", .value = 1, .better = "none", .unit = "s"}});
  };
  const PairedResults paired = Pair(timed(1), timed(2));
  ASSERT_THAT(paired.measures, SizeIs(1));
  EXPECT_EQ(paired.measures[0].kind.name, "length");
  std::vector<std::string> times;
  for (const PairedMeasure& each : paired.times) times.push_back(each.kind.name);
  EXPECT_THAT(times, testing::UnorderedElementsAre("rtf", "encode_time", "elapsed", "cpu"));
  EXPECT_THAT(Pair(timed(1), CaseJson("c", {})).gone, SizeIs(1));
}

TEST(PairResults, GivesEachCaseItsCluster) {
  const auto in = [](const std::string& id, const Json& cluster) {
    Json one = CaseJson(id, {{.value = 1}});
    one["cluster"] = cluster;
    return one;
  };
  const std::vector<Json> cases = {in("a", "s1"), in("b", Json()), in("c", "s1"), in("d", "s2")};
  EXPECT_THAT(PairAll(cases, cases).clusters, testing::ElementsAre(0, 1, 0, 2));
  const std::vector<Json> none = {in("a", Json()), in("b", Json())};
  EXPECT_THAT(PairAll(none, none).clusters, IsEmpty());
}

TEST(PairResults, PairsTheOutputsOfTwoRunsByTheirPlace) {
  const auto report = [](const std::string& file, double value) -> Json {
    return {{"schema_version", 3},
            {"routine", "TestDrc"},
            {"arguments", {file}},
            {"verdict", "pass"},
            {"figures", {FigureJson({.value = value, .file = file})}},
            {"outputs", {{{"name", file}, {"size", {{"value", 1}}}}}}};
  };
  const PairedResults paired = PairResults(SetOf(report("a.wav", 1)), SetOf(report("b.wav", 2)));
  EXPECT_THAT(paired.gone, IsEmpty());
  ASSERT_THAT(paired.measures, SizeIs(1));
  EXPECT_EQ(paired.measures[0].pairs[0].b, 2);
}

}  // namespace
}  // namespace host
