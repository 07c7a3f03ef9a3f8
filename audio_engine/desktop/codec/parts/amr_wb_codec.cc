#include "desktop/codec/parts/amr_wb_codec.h"

#include <opencore-amrwb/dec_if.h>
#include <vo-amrwbenc/enc_if.h>

#include <algorithm>
#include <iterator>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"

namespace desktop {

namespace {

constexpr size_t kBlockFrames = 320;
constexpr size_t kBytesOfMode[] = {18, 24, 33, 37, 41, 47, 51, 59, 61};

// The first octet of a payload of good quality, RFC 4867, section 5.3.
constexpr unsigned char ModeOctet(int mode) { return static_cast<unsigned char>(mode << 3 | 4); }

struct ExitEncoder {
  void operator()(void* state) const { E_IF_exit(state); }
};
struct ExitDecoder {
  void operator()(void* state) const { D_IF_exit(state); }
};

class AmrWbEncoder : public PayloadEncoder {
 public:
  explicit AmrWbEncoder(int mode) : m_mode(mode), m_state(E_IF_init()) {}

  bool IsOpen() const { return m_state != nullptr; }
  size_t blockFrames() const override { return kBlockFrames; }

  size_t Encode(const short* block, unsigned char* payload) override {
    return Size(E_IF_encode(m_state.get(), m_mode, block, payload, 0));
  }

  // The length of the payloads is a part of the format.
  bool SetBitRate(int /*bitRate*/) override { return false; }

  // The library has one complexity only, so that any will do.
  bool SetComplexity(int /*complexity*/) override { return true; }

 private:
  const int m_mode;
  std::unique_ptr<void, ExitEncoder> m_state;
};

class AmrWbDecoder : public PayloadDecoder {
 public:
  explicit AmrWbDecoder(int mode) : m_mode(mode), m_state(D_IF_init()) {}

  bool IsOpen() const { return m_state != nullptr; }
  size_t blockFrames() const override { return kBlockFrames; }

  bool Decode(const unsigned char* payload, size_t bytes, short* block) override {
    if (bytes != kBytesOfMode[m_mode] || payload[0] != ModeOctet(m_mode)) return false;
    D_IF_decode(m_state.get(), payload, block, _good_frame);
    std::copy_n(payload, bytes, m_last);
    m_hasLast = true;
    return true;
  }

  // Decodes the last payload again. When it is told that there is none, the library falls by 12 dB
  // at once and needs 300 ms of good payloads to come back.
  bool Conceal(short* block) override {
    if (m_hasLast) D_IF_decode(m_state.get(), m_last, block, _good_frame);
    return m_hasLast;
  }

 private:
  const int m_mode;
  std::unique_ptr<void, ExitDecoder> m_state;
  unsigned char m_last[61];
  bool m_hasLast = false;
};

bool IsWideBand(const CodecSetup& setup) {
  const int mode = setup.variant->quality;
  return setup.rate == 16000 && setup.channels == 1 && mode >= 0 && mode < std::ssize(kBytesOfMode);
}

}  // namespace

std::unique_ptr<PayloadEncoder> CreateAmrWbEncoder(const CodecSetup& setup) {
  if (!IsWideBand(setup)) return nullptr;
  auto encoder = std::make_unique<AmrWbEncoder>(setup.variant->quality);
  if (!encoder->IsOpen()) return nullptr;
  return encoder;
}

std::unique_ptr<PayloadDecoder> CreateAmrWbDecoder(const CodecSetup& setup) {
  if (!IsWideBand(setup)) return nullptr;
  auto decoder = std::make_unique<AmrWbDecoder>(setup.variant->quality);
  if (!decoder->IsOpen()) return nullptr;
  return decoder;
}

}  // namespace desktop
