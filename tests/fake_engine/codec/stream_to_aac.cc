#include "fake_engine/codec/stream_to_aac.h"

#include <deque>

#include "engine_api/codec/stream_to_aac.h"
#include "fake_engine/fake_engine.h"

int TransZUStreamToAAC(const char* data, int size, unsigned char** out) {
  static auto* const results = new std::deque<std::string>;
  FakeEngine& engine = FakeEngine::Current();
  RequireOrDie(*out == nullptr, "a result pointer that is null beforehand");
  const std::string stream(data, static_cast<size_t>(size));
  results->push_back(engine.Fails() ? std::string()
                                    : engine.script<StreamToAacScript>().convert(stream));
  std::string& result = results->back();
  const std::string buffer = engine.Buffer(data);
  engine.Record("TransZUStreamToAAC(%s, %d) = %zu", buffer.c_str(), size, result.size());
  if (!result.empty()) *out = reinterpret_cast<unsigned char*>(result.data());
  return engine.Answer(static_cast<int>(result.size()), -1);
}
