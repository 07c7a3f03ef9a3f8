#pragma once

#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace host {

// Another rate, by libsoxr in its very high quality: linear phase, without delay.
class RateConverter {
 public:
  // Rates in Hz. Interleaved samples of so many channels.
  RateConverter(int from, int to, int channels);

  // Appends what comes out for these samples. False when the library fails.
  bool Process(std::span<const double> samples, std::vector<double>& out);

  // Appends the rest, at the end.
  bool Finish(std::vector<double>& out);

 private:
  struct Delete {
    void operator()(soxr* converter) const;
  };

  double m_ratio;
  size_t m_channels;
  std::unique_ptr<soxr, Delete> m_converter;
};

}  // namespace host
