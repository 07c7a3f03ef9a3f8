#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// Decodes packets into sound without clicks: what is lost or damaged is made up, fading to silence
// within 100 ms, and the next packet fades in from there. Belongs to one thread.
class ConcealingDecoder {
 public:
  // Returns null for an id that nothing here codes.
  static std::unique_ptr<ConcealingDecoder> Create(int rawId);

  int Rate() const { return m_setup.rate; }  // Hz
  int Channels() const { return m_setup.channels; }
  int PacketMs() const { return static_cast<int>(Frames() * 1000) / m_setup.rate; }
  size_t Frames() const { return m_samples.size() / static_cast<size_t>(m_setup.channels); }

  // Decodes the packet at the start of `data` and returns its Frames() x Channels() samples, valid
  // until the next call. `taken` becomes its length in bytes, all of `size` when no packet is
  // there. A damaged packet is concealed as a lost one is.
  const short* Decode(const uint8_t* data, int size, int* taken);

  // Returns as many samples in place of a packet that is lost.
  const short* Conceal();

  // Whether the samples that were returned last were made up.
  bool IsMadeUp() const { return m_madeUp; }

  // Whether what is made up from now on is silence.
  bool IsSilent() const { return m_gain == 0; }

 private:
  ConcealingDecoder(const CodecSetup& setup, std::unique_ptr<PacketDecoder> decoder);

  void Fade(double perSample);

  const CodecSetup m_setup;
  const std::unique_ptr<PacketDecoder> m_decoder;
  std::vector<short> m_samples;
  // The gain of the last sample. It starts at 0, so that the first packet fades in.
  double m_gain = 0;
  bool m_madeUp = false;
};

}  // namespace desktop
