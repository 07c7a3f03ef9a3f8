#include "engine_api/codec/audio_processor.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/codec/codec_material.h"
#include "desktop/codec/ffmpeg.h"
#include "engine_api/codec/codec_format.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"

namespace {

AudioStreamFormat Pcm(int rate, int channels) {
  AudioStreamFormat format = FormatFromRawCodecId(-1);
  format.iSampleRate = rate;
  format.iNumOfChannels = channels;
  format.iBitRate = -123456789;  // Nobody may read it.
  return format;
}

class Processor {
 public:
  Processor(const AudioStreamFormat& in, const AudioStreamFormat& out) {
    AudioProcessor::Create(in, out, m_processor);
  }
  ~Processor() { AudioProcessor::Release(m_processor); }
  Processor(const Processor&) = delete;
  Processor& operator=(const Processor&) = delete;

  // One call, with buffers of exactly these sizes.
  std::string Process(const std::string& in, uint32_t room = 65536) {
    const std::vector<char> source(in.begin(), in.end());
    std::vector<char> target(room);
    auto taken = static_cast<uint32_t>(in.size());
    uint32_t bytes = room;
    m_processor->ProcessData(source.data(), &taken, target.data(), &bytes, 0, 0);
    EXPECT_EQ(taken, in.size());
    EXPECT_LE(bytes, room);
    return {target.begin(), target.begin() + bytes};
  }

  std::string InParts(const std::string& in, size_t bytes, uint32_t room = 65536) {
    std::string out;
    for (size_t at = 0; at < in.size(); at += bytes) out += Process(in.substr(at, bytes), room);
    return out;
  }

  AudioProcessor* get() { return m_processor; }

 private:
  AudioProcessor* m_processor = nullptr;
};

const int kRawIds[] = {0,  1,  2,  3,  21, 22, 23, 35, 36, 37, 38, 39, 40,
                       41, 42, 43, 44, 45, 46, 50, 51, 52, 53, 54, 55};

class EachId : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (NeedsAac(GetParam()) && AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  }
  const AudioStreamFormat m_format = FormatFromRawCodecId(GetParam());
};

INSTANTIATE_TEST_SUITE_P(RawIds, EachId, testing::ValuesIn(kRawIds),
                         [](auto& info) { return "Id" + std::to_string(info.param); });

TEST_P(EachId, CodesSamplesAndBringsThemBack) {
  const AudioStreamFormat pcm = Pcm(m_format.iSampleRate, m_format.iNumOfChannels);
  Processor encoder(pcm, m_format);
  Processor decoder(m_format, pcm);
  const Samples voice = Voice(m_format.iSampleRate, m_format.iNumOfChannels, 2);
  const std::string stream = encoder.InParts(BytesOf(voice), 4000);
  EXPECT_GT(stream.size(), 1000U);
  const Samples decoded = SamplesOf(decoder.InParts(stream, 300));
  const auto frame =
      static_cast<size_t>(m_format.iSamplesOfFrame) * static_cast<size_t>(m_format.iNumOfChannels);
  EXPECT_EQ(decoded.size(), voice.size() / frame * frame);
}

// However the bytes are cut, the same come out, whether there is much room or little.
TEST_P(EachId, DoesNotMindHowTheStreamIsCut) {
  const AudioStreamFormat pcm = Pcm(m_format.iSampleRate, m_format.iNumOfChannels);
  const std::string voice = BytesOf(Voice(m_format.iSampleRate, m_format.iNumOfChannels, 0.5));
  const std::string stream = Processor(pcm, m_format).InParts(voice, 4000);
  const std::string samples = Processor(m_format, pcm).InParts(stream, 4000, 400000);
  for (const size_t bytes : {size_t{1}, size_t{7}, size_t{1001}, size_t{1000000}}) {
    EXPECT_EQ(Processor(pcm, m_format).InParts(voice, bytes), stream) << bytes;
    EXPECT_EQ(Processor(m_format, pcm).InParts(stream, bytes, 400000), samples) << bytes;
  }
  // What finds no room at once comes later, in whole packets and whole frames.
  Processor encoder(pcm, m_format);
  std::string late = encoder.Process(voice, 1100);
  EXPECT_LE(late.size(), 1100U);
  for (int i = 0; i < 100; ++i) late += encoder.Process("", 1100);
  EXPECT_EQ(late, stream);
  Processor decoder(m_format, pcm);
  late = decoder.Process(stream, 1001);
  EXPECT_EQ(late.size() % (2 * static_cast<size_t>(m_format.iNumOfChannels)), 0U);
  for (int i = 0; i < 200; ++i) late += decoder.Process("", 1001);
  EXPECT_EQ(late, samples);
}

TEST_P(EachId, PassesOverWhatIsNoFrame) {
  const CapturedStderr log;
  const AudioStreamFormat pcm = Pcm(m_format.iSampleRate, m_format.iNumOfChannels);
  const std::string voice = BytesOf(Voice(m_format.iSampleRate, m_format.iNumOfChannels, 0.5));
  const std::string stream = Processor(pcm, m_format).InParts(voice, 4000);
  const std::string samples = Processor(m_format, pcm).Process(stream, 400000);
  Processor decoder(m_format, pcm);
  EXPECT_EQ(decoder.Process(std::string(5000, '\x55') + stream, 400000), samples);
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

// The ids that CreateAudioCodec has no family for, or no test of.
TEST(AudioProcessor, BringsTheSignalBackAsLateAsDocumented) {
  for (const auto& [id, lag] :
       {std::pair(0, 80), {21, 80}, {23, 80}, {3, 95}, {52, 312}, {54, 312}}) {
    const AudioStreamFormat format = FormatFromRawCodecId(id);
    const AudioStreamFormat pcm = Pcm(format.iSampleRate, format.iNumOfChannels);
    const Samples voice = Voice(format.iSampleRate, format.iNumOfChannels, 2);
    const std::string stream = Processor(pcm, format).InParts(BytesOf(voice), 4000);
    const Samples decoded = SamplesOf(Processor(format, pcm).InParts(stream, 300));
    if (format.iBytesOfCodedFrame != 0) {  // In packets of one length.
      const int coded = format.iBytesOfCodedFrame;
      EXPECT_EQ(stream.size(), static_cast<size_t>(100 * (3 + coded))) << id;
      EXPECT_EQ(stream.substr(0, 3),
                (std::string{static_cast<char>(1 + coded), '\xfc', static_cast<char>(id)}));
    }
    EXPECT_NEAR(BestLag(voice, decoded, format.iNumOfChannels, lag), lag, 1) << id;
    EXPECT_GE(SnrDb(voice, decoded, format.iNumOfChannels, lag), 6) << id;
  }
}

TEST(AudioProcessor, ConvertsSamplesAlone) {
  Processor same(Pcm(16000, 1), Pcm(16000, 1));
  const std::string voice = BytesOf(Voice(16000, 1, 0.3));
  EXPECT_EQ(same.InParts(voice, 333), voice);

  Processor more(Pcm(16000, 1), Pcm(48000, 2));
  const std::string out = more.InParts(voice, 333);
  EXPECT_EQ(out.size(), voice.size() * 6);
}

TEST(AudioProcessor, ConvertsOneCodecToAnother) {
  const AudioStreamFormat silk = FormatFromRawCodecId(2);
  const AudioStreamFormat opus = FormatFromRawCodecId(52);
  const std::string voice = BytesOf(Voice(16000, 1, 2));
  const std::string stream = Processor(Pcm(16000, 1), silk).InParts(voice, 640);
  const std::string other = Processor(silk, opus).InParts(stream, 100);
  const Samples decoded = SamplesOf(Processor(opus, Pcm(48000, 2)).InParts(other, 100));
  ASSERT_EQ(decoded.size() / 1920, 100U);
  Samples left;
  for (size_t i = 0; i < decoded.size(); i += 6) left.push_back(decoded[i]);
  const Samples original = SamplesOf(voice);
  const int lag = BestLag(original, left, 1, 104 + 104 + 80);
  EXPECT_GE(SnrDb(original, left, 1, lag), 8) << lag;
}

// The capacities of a caller that hands over 4096 samples of stereo and has room for 65536 bytes.
TEST(AudioProcessor, WritesAnAdtsStream) {
  if (AUDIO_ENGINE_HAS_AAC == 0) GTEST_SKIP() << "built without AAC";
  Processor encoder(Pcm(44100, 2), FormatFromRawCodecId(1));
  const std::string voice = BytesOf(Voice(44100, 2, 4));
  std::string stream;
  for (size_t at = 0; at + 8192 <= voice.size(); at += 8192) {
    stream += encoder.Process(voice.substr(at, 8192));
  }
  const Decoded decoded = DecodeWithFfmpeg(stream);
  if (!decoded.available) GTEST_SKIP() << "ffmpeg is not installed";
  EXPECT_EQ(decoded.complaints, "");
  EXPECT_EQ(decoded.rate, 44100);
  EXPECT_EQ(decoded.channels, 2);
  EXPECT_NEAR(decoded.seconds, 4, 0.1);
}

TEST(AudioProcessor, DropsWhatWaitsForTooLong) {
  const CapturedStderr log;
  Processor processor(Pcm(16000, 1), Pcm(16000, 1));
  const std::string second(32000, 'x');
  for (int i = 0; i < 100; ++i) EXPECT_EQ(processor.Process(second, 0), "");
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
  EXPECT_EQ(processor.Process("", 3000000).size(), 1U << 20);
}

TEST(AudioProcessor, LogsOneLineHoweverMuchGoesWrong) {
  const CapturedStderr log;
  Processor processor(FormatFromRawCodecId(2), Pcm(48000, 2));
  EXPECT_EQ(processor.Process(std::string(5000, '\x55')), "");
  const std::string voice = BytesOf(Voice(16000, 1, 4));
  const std::string stream = Processor(Pcm(16000, 1), FormatFromRawCodecId(2)).Process(voice);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(processor.Process(stream, 0), "");
  EXPECT_GT(processor.Process("", 3000000).size(), 1000000U);
  EXPECT_EQ(log.Lines().size(), 1U) << log.Text();
}

TEST(AudioProcessor, IsNeverNull) {
  const CapturedStderr log;
  const AudioStreamFormat pcm = Pcm(16000, 1);
  AudioStreamFormat unknown = FormatFromRawCodecId(2);
  unknown.iRawCodecId = 7;
  AudioStreamFormat slow = FormatFromRawCodecId(2);
  slow.iSampleRate = 1234;
  const AudioStreamFormat zero = {};
  for (const auto& [in, out] : {std::pair(unknown, pcm), std::pair(pcm, unknown),
                                std::pair(slow, pcm), std::pair(pcm, slow), std::pair(zero, zero),
                                std::pair(Pcm(0, 1), pcm), std::pair(Pcm(16000, 0), pcm),
                                std::pair(pcm, Pcm(16000, -1)), std::pair(Pcm(-5, 1), pcm)}) {
    Processor processor(in, out);
    ASSERT_NE(processor.get(), nullptr);
    EXPECT_EQ(processor.Process(std::string(10000, '\1')), "");
    EXPECT_EQ(processor.Process(std::string(10000, '\1')), "");
  }
  EXPECT_EQ(log.Lines().size(), 9U) << log.Text();
}

TEST(AudioProcessor, IsClearedByRelease) {
  AudioProcessor* processor = nullptr;
  AudioProcessor::Release(processor);
  AudioProcessor::Create(Pcm(16000, 1), FormatFromRawCodecId(2), processor);
  ASSERT_NE(processor, nullptr);
  AudioProcessor::Release(processor);
  EXPECT_EQ(processor, nullptr);
}

TEST(AudioProcessor, AllocatesNothingPerCall) {
  Processor encoder(Pcm(44100, 2), FormatFromRawCodecId(2));
  const Samples voice = Voice(44100, 2, 0.5);
  std::vector<char> out(65536);
  const auto call = [&] {
    auto bytes = static_cast<uint32_t>(voice.size() * 2);
    auto room = static_cast<uint32_t>(out.size());
    encoder.get()->ProcessData(voice.data(), &bytes, out.data(), &room, 0, 0);
    return room;
  };
  const size_t before = AllocationCount();
  EXPECT_GT(call(), 100U);
  EXPECT_GT(call(), 100U);
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
