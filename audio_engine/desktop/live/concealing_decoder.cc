#include "desktop/live/concealing_decoder.h"

#include <algorithm>
#include <cmath>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/common/counts.h"
#include "engine_api/codec/codec_format.h"

namespace desktop {

namespace {

constexpr double kFadeOutMs = 100;
constexpr double kFadeInMs = 5;

}  // namespace

std::unique_ptr<ConcealingDecoder> ConcealingDecoder::Create(int rawId) {
  const AudioStreamFormat format = FormatFromRawCodecId(rawId);
  const CodecSetup setup = {FindVariant(rawId), format.iSampleRate, format.iNumOfChannels};
  std::unique_ptr<PacketDecoder> decoder;
  if (setup.variant != nullptr) decoder = PacketDecoder::Create(setup);
  if (decoder == nullptr) return nullptr;
  return std::unique_ptr<ConcealingDecoder>(new ConcealingDecoder(setup, std::move(decoder)));
}

ConcealingDecoder::ConcealingDecoder(const CodecSetup& setup,
                                     std::unique_ptr<PacketDecoder> decoder)
    : m_setup(setup), m_decoder(std::move(decoder)), m_samples(m_decoder->blockSamples()) {}

const short* ConcealingDecoder::Decode(const uint8_t* data, int size, int* taken) {
  const PacketSpan span = m_decoder->Find(data, Size(size));
  *taken = size;
  if (span.state != PacketSpan::kWhole) {
    m_decoder->Refuse();
    return Conceal();
  }
  *taken = Count(span.packetBytes);
  if (!m_decoder->Decode(data, span, m_samples.data())) return Conceal();
  m_madeUp = false;
  if (m_gain < 1) Fade(1000 / (kFadeInMs * m_setup.rate));
  return m_samples.data();
}

const short* ConcealingDecoder::Conceal() {
  m_madeUp = true;
  if (IsSilent()) {
    std::fill(m_samples.begin(), m_samples.end(), short{0});
  } else {
    m_decoder->Conceal(m_samples.data());
    Fade(-1000 / (kFadeOutMs * m_setup.rate));
  }
  return m_samples.data();
}

// Fades to silence while packets are made up, and back to full volume once they are there.
void ConcealingDecoder::Fade(double perSample) {
  const auto channels = static_cast<size_t>(m_setup.channels);
  for (size_t i = 0; i < Frames(); ++i) {
    m_gain = std::clamp(m_gain + perSample, 0.0, 1.0);
    for (size_t c = 0; c < channels; ++c) {
      short& sample = m_samples[i * channels + c];
      sample = static_cast<short>(std::lround(sample * m_gain));
    }
  }
}

}  // namespace desktop
