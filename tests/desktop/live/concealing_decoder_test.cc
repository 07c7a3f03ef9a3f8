#include "desktop/live/concealing_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "desktop/codec/parts/codec_table.h"
#include "desktop/live/packets.h"
#include "engine_api/codec/codec_format.h"
#include "support/voice.h"

namespace {

using desktop::ConcealingDecoder;
using desktop::PacketDecoder;

// What a concealing decoder is to give: what a plain one does, louder and softer by its gain.
class Expected {
 public:
  Expected(int rawId, int rate, int channels)
      : m_rate(rate),
        m_channels(static_cast<size_t>(channels)),
        m_decoder(PacketDecoder::Create({desktop::FindVariant(rawId), rate, channels})),
        m_samples(m_decoder->blockSamples()) {}

  const std::vector<short>& Decoded(const std::vector<uint8_t>& packet) {
    const auto span = m_decoder->Find(packet.data(), packet.size());
    EXPECT_TRUE(m_decoder->Decode(packet.data(), span, m_samples.data()));
    Fade(5);
    return m_samples;
  }

  const std::vector<short>& Concealed() {
    if (m_gain > 0) m_decoder->Conceal(m_samples.data());
    Fade(-100);
    return m_samples;
  }

  double Gain() const { return m_gain; }

 private:
  void Fade(double ms) {
    for (size_t i = 0; i < m_samples.size(); ++i) {
      if (i % m_channels == 0) m_gain = std::clamp(m_gain + 1000 / (ms * m_rate), 0.0, 1.0);
      m_samples[i] = static_cast<short>(std::lround(m_samples[i] * m_gain));
    }
  }

  const int m_rate;
  const size_t m_channels;
  const std::unique_ptr<PacketDecoder> m_decoder;
  std::vector<short> m_samples;
  double m_gain = 0;
};

// Frames that are there (d), lost (l) and cut off (c), more than 100 ms of them in a row.
TEST(ConcealingDecoder, FadesSampleBySampleOverFramesThatAreNotThere) {
  for (const int rawId : {50, 52}) {
    const auto decoder = ConcealingDecoder::Create(rawId);
    ASSERT_NE(decoder, nullptr);
    const int rate = decoder->Rate();
    const KeptPackets kept = Pack(rawId, SungNote(220, rate, 1), rate);
    Expected expected(rawId, rate, decoder->Channels());
    EXPECT_TRUE(decoder->IsSilent());
    EXPECT_FALSE(decoder->IsMadeUp());
    size_t next = 0;
    for (const char kind : std::string("ldddlldclllllldldd")) {
      const std::vector<uint8_t>& packet = kept.packets[next++].bytes;
      const int size = kind == 'c' ? 2 : static_cast<int>(packet.size());
      int taken = 0;
      const short* const samples =
          kind == 'l' ? decoder->Conceal() : decoder->Decode(packet.data(), size, &taken);
      EXPECT_EQ(taken, kind == 'l' ? 0 : size);
      const std::vector<short>& right =
          kind == 'd' ? expected.Decoded(packet) : expected.Concealed();
      ASSERT_EQ(right.size(), decoder->Frames() * static_cast<size_t>(decoder->Channels()));
      EXPECT_TRUE(std::equal(right.begin(), right.end(), samples)) << rawId << " packet " << next;
      EXPECT_EQ(decoder->IsMadeUp(), kind != 'd');
      EXPECT_EQ(decoder->IsSilent(), expected.Gain() == 0);
    }
  }
}

TEST(ConcealingDecoder, KnowsItsFormatAndRefusesIdsThatNothingCodes) {
  const auto decoder = ConcealingDecoder::Create(50);
  ASSERT_NE(decoder, nullptr);
  const AudioStreamFormat format = FormatFromRawCodecId(50);
  EXPECT_EQ(decoder->Rate(), format.iSampleRate);
  EXPECT_EQ(decoder->Channels(), format.iNumOfChannels);
  EXPECT_EQ(decoder->PacketMs(), 20);
  EXPECT_EQ(ConcealingDecoder::Create(-1), nullptr);
  EXPECT_EQ(ConcealingDecoder::Create(255), nullptr);
}

}  // namespace
