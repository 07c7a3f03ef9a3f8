#include "page_fixture.h"

#include <filesystem>

#include "../recording/sound_files.h"
#include "report_page/page_run.h"
#include "support/file_bytes.h"

using host::Json;

Json PageTest::FileEntry(const std::string& name, const std::string& path) {
  return {{"name", name},
          {"path", path},
          {"container", "wave"},
          {"sha256", {{"value", std::string(64, 'a')}}},
          {"size", {{"value", 44}, {"unit", "bytes"}}},
          {"samples", {{"value", "pcm16"}}},
          {"rate", {{"value", 16000}, {"unit", "Hz"}}},
          {"channel_count", {{"value", 1}, {"unit", "channels"}}}};
}

Json PageTest::GuardJson(const std::string& name, const std::string& file, double at, bool fails) {
  return {{"name", name}, {"file", file}, {"at", at}, {"channel", 0}, {"fails", fails}};
}

void PageTest::Write(const std::string& path, const std::string& bytes) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  if (!folder.empty()) std::filesystem::create_directories(folder);
  WriteFile(path, bytes);
}

void PageTest::WriteSuite(const std::string& folder, const std::vector<Json>& cases) {
  std::filesystem::create_directories(folder + "/reports");
  WriteFile(folder + "/results.json", ResultsJson(cases).dump());
  for (const Json& one : cases) {
    const std::string id = one["id"];
    const std::string work = folder + "/cases/" + id;
    std::filesystem::create_directories(work);
    Json output = FileEntry("out.wav", work + "/out.wav");
    output["measured_against"] = {
        {"reference", Json()}, {"input", work + "/in.wav"}, {"far", Json()}, {"near", Json()}};
    const Json report = {{"directory", std::filesystem::current_path().string()},
                         {"workspace", work},
                         {"command", {"audio_bench", "run", "--", one["routine"], "a b"}},
                         {"log", work + "/log"},
                         {"inputs", {FileEntry("in.wav", work + "/in.wav")}},
                         {"outputs", {output}}};
    WriteFile(folder + "/reports/" + id + ".json", report.dump());
  }
}

void PageTest::WriteSounds(const std::string& folder, const std::string& id,
                           const std::vector<double>& input, const std::vector<double>& output) {
  const std::string work = folder + "/cases/" + id;
  std::filesystem::create_directories(work);
  constexpr int kWave16 = 0x010000 | 0x0002;
  host::WriteSound(work + "/in.wav", {.format = kWave16, .rate = 16000, .samples = input});
  host::WriteSound(work + "/out.wav", {.format = kWave16, .rate = 16000, .samples = output});
}

void PageTest::MeasureAgainst(const std::string& folder, const std::string& id, const Json& roles) {
  const std::string path = folder + "/reports/" + id + ".json";
  Json report = Json::parse(ReadFile(path));
  Json& against = report["outputs"][0]["measured_against"];
  for (const auto& [role, name] : roles.items()) {
    against[role] =
        name.is_null() ? Json() : Json(folder + "/cases/" + id + "/" + name.get<std::string>());
  }
  WriteFile(path, report.dump());
}

Json PageTest::CaseOf(const std::string& id, const std::string& verdict) {
  Json one = CaseJson(id, {{.name = "my_sdr", .value = 5}});
  one["verdict"] = verdict;
  return one;
}

host::PageData PageTest::DataOf(const std::string& folder, const std::string& against,
                                const host::PageLimits& limits) {
  return MakePageData(host::ReadPageRun(folder, against, 200), limits);
}

std::string PageTest::Ids(const Json& page) {
  std::string ids;
  for (const Json& one : page["cases"])
    ids += (ids.empty() ? "" : " ") + one["id"].get<std::string>();
  return ids;
}

std::vector<double> PageTest::Decoded(const host::PageData& data, const std::string& key) {
  for (const host::PageAudio& audio : data.audio) {
    if (audio.key != key) continue;
    WriteFile("decoded.b64", audio.base64);
    EXPECT_EQ(std::system("base64 -d decoded.b64 > decoded.flac"), 0);
    return host::ReadSound("decoded.flac").samples;
  }
  ADD_FAILURE() << "no recording " << key;
  return {};
}
