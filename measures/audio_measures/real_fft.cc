#include "audio_measures/real_fft.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace audio_measures {

// Plans that nobody uses at the moment: making one takes longer than a transform.
class RealFft::Shelf {
 public:
  static Shelf& Instance() {
    static Shelf shelf;
    return shelf;
  }
  ~Shelf() {
    for (const Kept& kept : m_kept) kiss_fftr_free(kept.plan);
  }
  Shelf(const Shelf&) = delete;
  Shelf& operator=(const Shelf&) = delete;

  // Null where there is none.
  kiss_fftr_state* Take(size_t size, Direction direction) {
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find_if(
        m_kept, [&](const Kept& kept) { return kept.size == size && kept.direction == direction; });
    if (found == m_kept.end()) return nullptr;
    kiss_fftr_state* const plan = found->plan;
    m_kept.erase(found);
    return plan;
  }

  void Keep(size_t size, Direction direction, kiss_fftr_state* plan) {
    const std::lock_guard lock(m_mutex);
    m_kept.push_back({size, direction, plan});
    if (m_kept.size() <= kMost) return;
    kiss_fftr_free(m_kept.front().plan);
    m_kept.erase(m_kept.begin());
  }

 private:
  static constexpr size_t kMost = 16;
  struct Kept {
    size_t size;
    Direction direction;
    kiss_fftr_state* plan;
  };

  Shelf() { m_kept.reserve(kMost + 1); }

  std::mutex m_mutex = {};
  std::vector<Kept> m_kept = {};
};

void RealFft::GiveBack::operator()(kiss_fftr_state* plan) const {
  Shelf::Instance().Keep(size, direction, plan);
}

RealFft::Plan RealFft::Take(size_t size, Direction direction) {
  kiss_fftr_state* plan = Shelf::Instance().Take(size, direction);
  if (plan == nullptr) {
    plan = kiss_fftr_alloc(static_cast<int>(size), direction == Direction::kInverse ? 1 : 0,
                           nullptr, nullptr);
  }
  return {plan, GiveBack{size, direction}};
}

RealFft::RealFft(size_t size)
    : m_size(size),
      m_forward(Take(size, Direction::kForward)),
      m_inverse(Take(size, Direction::kInverse)) {}

void RealFft::Forward(std::span<const float> samples, std::span<std::complex<float>> bins) const {
  kiss_fftr(m_forward.get(), samples.data(), reinterpret_cast<kiss_fft_cpx*>(bins.data()));
}

void RealFft::Inverse(std::span<const std::complex<float>> bins, std::span<float> samples) const {
  kiss_fftri(m_inverse.get(), reinterpret_cast<const kiss_fft_cpx*>(bins.data()), samples.data());
}

}  // namespace audio_measures
