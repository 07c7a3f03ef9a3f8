#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/codec/parts/packet_codec.h"

namespace desktop {

// Decodes frames into sound without clicks: what is lost or damaged is made up, fading to silence
// within 100 ms, and the next frame fades in from there. Belongs to one thread.
class ConcealingDecoder {
 public:
  // Null for an id that nothing here codes.
  static std::unique_ptr<ConcealingDecoder> Create(int rawId);

  int Rate() const { return m_setup.rate; }  // Hz
  int Channels() const { return m_setup.channels; }
  int FrameMs() const { return static_cast<int>(Frames() * 1000) / m_setup.rate; }
  size_t Frames() const { return m_samples.size() / static_cast<size_t>(m_setup.channels); }

  // Decodes the frame at the start of `data` and returns its Frames() x Channels() samples, valid
  // until the next call. `taken`: its bytes, all of `size` when no frame is there. What is damaged
  // is as good as lost.
  const short* Decode(const uint8_t* data, int size, int* taken);

  // The same in place of a frame that is lost.
  const short* Conceal();

  bool IsMadeUp() const { return m_madeUp; }     // The last frame was.
  bool IsSilent() const { return m_gain == 0; }  // What is made up from now on is silence.

 private:
  ConcealingDecoder(const CodecSetup& setup, std::unique_ptr<PacketDecoder> decoder);

  void Fade(double perSample);

  const CodecSetup m_setup;
  const std::unique_ptr<PacketDecoder> m_decoder;
  std::vector<short> m_samples;
  double m_gain = 0;  // Of the last sample; the first frame fades in.
  bool m_madeUp = false;
};

}  // namespace desktop
