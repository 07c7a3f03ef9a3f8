#include "desktop/codec/parts/amr_wb_codec.h"

#include <opencore-amrwb/dec_if.h>
#include <vo-amrwbenc/enc_if.h>

#include <algorithm>
#include <iterator>

#include "desktop/codec/parts/codec_table.h"

namespace desktop {

namespace {

constexpr int kFrame = 320;
constexpr int kBytesOfMode[] = {18, 24, 33, 37, 41, 47, 51, 59, 61};

// A frame of good quality, RFC 4867, section 5.3.
constexpr unsigned char ModeOctet(int mode) { return static_cast<unsigned char>(mode << 3 | 4); }

struct ExitEncoder {
  void operator()(void* state) const { E_IF_exit(state); }
};
struct ExitDecoder {
  void operator()(void* state) const { D_IF_exit(state); }
};

class AmrWbEncoder : public PacketEncoder {
 public:
  explicit AmrWbEncoder(int mode) : m_mode(mode), m_state(E_IF_init()) {}

  bool IsOpen() const { return m_state != nullptr; }
  int frameSamples() const override { return kFrame; }

  int Encode(const short* frame, unsigned char* packet) override {
    return std::max(0, E_IF_encode(m_state.get(), m_mode, frame, packet, 0));
  }

  // The length of the packets is a part of the format.
  bool SetBitRate(int /*bitRate*/) override { return false; }

  // One complexity for all.
  bool SetComplexity(int /*complexity*/) override { return true; }

 private:
  const int m_mode;
  std::unique_ptr<void, ExitEncoder> m_state;
};

class AmrWbDecoder : public PacketDecoder {
 public:
  explicit AmrWbDecoder(int mode) : m_mode(mode), m_state(D_IF_init()) {}

  bool IsOpen() const { return m_state != nullptr; }
  int frameSamples() const override { return kFrame; }

  bool Decode(const unsigned char* packet, int bytes, short* frame) override {
    if (bytes != kBytesOfMode[m_mode] || packet[0] != ModeOctet(m_mode)) return false;
    D_IF_decode(m_state.get(), packet, frame, _good_frame);
    std::copy_n(packet, bytes, m_last);
    m_hasLast = true;
    return true;
  }

  // The last packet again. Told that there is none, the library falls by 12 dB at once and needs
  // 300 ms of good packets to come back.
  bool Conceal(short* frame) override {
    if (m_hasLast) D_IF_decode(m_state.get(), m_last, frame, _good_frame);
    return m_hasLast;
  }

 private:
  const int m_mode;
  std::unique_ptr<void, ExitDecoder> m_state;
  unsigned char m_last[61];  // The last packet.
  bool m_hasLast = false;
};

bool IsWideBand(const CodecSetup& setup) {
  const int mode = setup.variant->quality;
  return setup.rate == 16000 && setup.channels == 1 && mode >= 0 && mode < std::ssize(kBytesOfMode);
}

}  // namespace

std::unique_ptr<PacketEncoder> CreateAmrWbEncoder(const CodecSetup& setup) {
  if (!IsWideBand(setup)) return nullptr;
  auto encoder = std::make_unique<AmrWbEncoder>(setup.variant->quality);
  if (!encoder->IsOpen()) return nullptr;
  return encoder;
}

std::unique_ptr<PacketDecoder> CreateAmrWbDecoder(const CodecSetup& setup) {
  if (!IsWideBand(setup)) return nullptr;
  auto decoder = std::make_unique<AmrWbDecoder>(setup.variant->quality);
  if (!decoder->IsOpen()) return nullptr;
  return decoder;
}

}  // namespace desktop
