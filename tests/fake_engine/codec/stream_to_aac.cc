#include "fake_engine/codec/stream_to_aac.h"

#include <deque>

#include "engine_api/codec/stream_to_aac.h"
#include "fake_engine/fake_engine.h"

int TransZUStreamToAAC(const char* data, int size, unsigned char** out) {
  static auto* const results = new std::deque<std::string>;
  FakeEngine& engine = FakeEngine::Current();
  RequireOrDie(*out == nullptr, "a result pointer that is null beforehand");
  results->push_back(
      engine.script<StreamToAacScript>().convert(std::string(data, static_cast<size_t>(size))));
  std::string& result = results->back();
  const std::string buffer = engine.Buffer(data);
  engine.Record("TransZUStreamToAAC(%s, %d) = %zu", buffer.c_str(), size, result.size());
  if (!result.empty()) *out = reinterpret_cast<unsigned char*>(result.data());
  return static_cast<int>(result.size());
}
