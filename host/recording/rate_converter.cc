#include "recording/rate_converter.h"

#include <soxr.h>

#include <cmath>

namespace host {

void RateConverter::Delete::operator()(soxr* converter) const { soxr_delete(converter); }

RateConverter::RateConverter(int from, int to, int channels)
    : m_ratio(static_cast<double>(to) / from), m_channels(static_cast<size_t>(channels)) {
  const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
  const soxr_runtime_spec_t oneThread = soxr_runtime_spec(1);
  soxr_error_t error = nullptr;
  m_converter.reset(soxr_create(from, to, static_cast<unsigned>(channels), &error, &samples,
                                &quality, &oneThread));
}

bool RateConverter::Process(std::span<const double> samples, std::vector<double>& out) {
  if (m_converter == nullptr) return false;
  size_t left = samples.size() / m_channels;
  const double* at = samples.data();
  while (left > 0) {
    const size_t before = out.size();
    const auto room = static_cast<size_t>(std::ceil(static_cast<double>(left) * m_ratio)) + 64;
    out.resize(before + room * m_channels);
    size_t taken = 0;
    size_t made = 0;
    const soxr_error_t error =
        soxr_process(m_converter.get(), at, left, &taken, out.data() + before, room, &made);
    out.resize(before + made * m_channels);
    if (error != nullptr || (taken == 0 && made == 0)) return false;
    left -= taken;
    at += taken * m_channels;
  }
  return true;
}

bool RateConverter::Finish(std::vector<double>& out) {
  if (m_converter == nullptr) return false;
  constexpr size_t kRoom = 4096;  // Frames.
  while (true) {
    const size_t before = out.size();
    out.resize(before + kRoom * m_channels);
    size_t made = 0;
    const soxr_error_t error =
        soxr_process(m_converter.get(), nullptr, 0, nullptr, out.data() + before, kRoom, &made);
    out.resize(before + made * m_channels);
    if (error != nullptr) return false;
    if (made == 0) return true;
  }
}

}  // namespace host
