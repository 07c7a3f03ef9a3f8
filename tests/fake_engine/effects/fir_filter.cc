#include "engine_api/effects/fir_filter.h"

#include "fake_engine/fake_engine.h"

namespace {

class FakeFirFilter : public zuwebrtc::FIRFilter {
 public:
  FakeFirFilter(int number, size_t maxInputLength)
      : m_number(number), m_maxInputLength(maxInputLength) {
    FakeEngine::Current().Born("FIRFilter");
  }

  ~FakeFirFilter() override {
    FakeEngine::Current().Record("~FIRFilter #%d", m_number);
    FakeEngine::Current().Died("FIRFilter");
  }

  void Filter(const float* in, size_t length, float* out) override {
    RequireOrDie(length <= m_maxInputLength, "a block within the announced length");
    FakeEngine::Current().Record("#%d.Filter(%zu)", m_number, length);
    FakeEngine::Current().fir(m_number, in, length, out);
  }

  void UpdateCoeffients(const float*, size_t count) override {
    FakeEngine::Current().Record("#%d.UpdateCoeffients(%zu)", m_number, count);
  }

 private:
  const int m_number;
  const size_t m_maxInputLength;
};

}  // namespace

zuwebrtc::FIRFilter* zuwebrtc::FIRFilter::Create(const float* coefficients, size_t count,
                                                 size_t max_input_length) {
  FakeEngine& engine = FakeEngine::Current();
  engine.firCoefficients.emplace_back(coefficients, coefficients + count);
  const auto number = static_cast<int>(engine.firCoefficients.size());
  engine.Record("FIRFilter::Create(%zu, %zu) = #%d", count, max_input_length, number);
  return new FakeFirFilter(number, max_input_length);
}
