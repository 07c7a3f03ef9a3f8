#include "fake_engine/effects/fir_filter.h"

#include "engine_api/effects/fir_filter.h"
#include "fake_engine/fake_engine.h"

namespace {

class FakeFirFilter : public zuwebrtc::FIRFilter {
 public:
  FakeFirFilter(int number, size_t maxInputLength)
      : m_number(number), m_maxInputLength(maxInputLength) {}

  ~FakeFirFilter() override { FakeEngine::Current().Died(this); }

  void Filter(const float* in, size_t length, float* out) override {
    RequireOrDie(length <= m_maxInputLength, "a block within the announced length");
    FakeEngine& engine = FakeEngine::Current();
    const std::string from = engine.Buffer(in);
    const std::string to = engine.Buffer(out);
    engine.Call(this, "Filter(%s, %zu, %s)", from.c_str(), length, to.c_str());
    engine.script<FirFilterScript>().filter(m_number, in, length, out);
  }

  void UpdateCoeffients(const float*, size_t count) override {
    FakeEngine::Current().Call(this, "UpdateCoeffients(%zu)", count);
  }

 private:
  const int m_number;
  const size_t m_maxInputLength;
};

}  // namespace

zuwebrtc::FIRFilter* zuwebrtc::FIRFilter::Create(const float* coefficients, size_t count,
                                                 size_t max_input_length) {
  FakeEngine& engine = FakeEngine::Current();
  auto& script = engine.script<FirFilterScript>();
  auto& made = script.coefficients;
  made.emplace_back(coefficients, coefficients + (script.keepCoefficients ? count : 0));
  auto* const filter = new FakeFirFilter(static_cast<int>(made.size()), max_input_length);
  const std::string name = engine.Identify(filter, "FIRFilter");
  engine.Record("FIRFilter::Create(%zu, %zu) = %s", count, max_input_length, name.c_str());
  return filter;
}
