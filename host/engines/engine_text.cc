#include "engines/engine_text.h"

#include "base/printable.h"
#include "base/wrap_text.h"
#include "engine_api/common/interface_version.h"

namespace host {

namespace {

// One that answers, and for what.
Json AnswererJson(const std::string& name, const EngineLibrary& library, const Json& facilities) {
  return {{"name", name},
          {"path", Fact(library.path, "the path of this program is not known")},
          {"build_id", Fact(library.buildId, "it was linked without one")},
          {"sha256", Fact(library.digest, "it is a part of audio_bench, whose build id tells it")},
          {"facilities", facilities}};
}

// What the engine of audio_bench answers for.
std::vector<std::string> Others(const Engine& engine) {
  std::vector<std::string> others;
  for (const std::string& each : AllFacilities()) {
    if (!engine.IsInLibrary(each)) others.push_back(each);
  }
  return others;
}

Json AnswerersJson(const Engine& engine) {
  Json answerers = Json::array();
  if (engine.library) {
    answerers.push_back(
        AnswererJson(engine.library->Name(), *engine.library, engine.library->facilities));
  }
  answerers.push_back(AnswererJson(AUDIO_ENGINE_NAME, BuiltInEngine(), Others(engine)));
  return answerers;
}

std::string Facilities(const EngineLibrary& library) {
  std::string names;
  for (const std::string& each : library.facilities) names += (names.empty() ? "" : ", ") + each;
  return names;
}

std::string Identity(const EngineLibrary& library) {
  std::string text = Printable(library.path);
  if (!library.buildId.empty()) text += ", build id " + library.buildId;
  if (!library.digest.empty()) text += ", SHA-256 " + library.digest;
  return text;
}

}  // namespace

std::string EngineLine(const Engine& engine) {
  return Printable(engine.library->path) + " for " + Facilities(*engine.library);
}

std::string EngineText(const Engine& engine, size_t width) {
  const std::string own = std::string(AUDIO_ENGINE_NAME) + " (" + Identity(BuiltInEngine()) + ")";
  if (!engine.library) return WrapText(own + ", for all facilities", "Engine: ", 2, width);
  const std::string library = Printable(engine.library->Name()) + " (" + Identity(*engine.library) +
                              "), for " + Facilities(*engine.library);
  const std::string others = std::to_string(Others(engine).size());
  return WrapText(library, "Engine: ", 2, width) +
         WrapText(own + ", for " + others + " other facilities", "Engine: ", 2, width);
}

Json EngineJson(const Engine& engine) {
  const bool own = !engine.library;
  return {{"name", own ? std::string(AUDIO_ENGINE_NAME) : engine.library->Name()},
          {"version",
           Fact(own ? AUDIO_ENGINE_VERSION : "", "an engine library does not tell its version")},
          {"interface_version", AUDIO_ENGINE_INTERFACE},
          {"answers", AnswerersJson(engine)}};
}

}  // namespace host
