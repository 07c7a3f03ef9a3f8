// Chains of effects over frames of 10 ms: the karaoke voice (equaliser, reverberation, compressor,
// limiter) and the equaliser alone. Listen for clipping ahead of the limiter, for pumping, and for
// clicks at the frame seams.

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/common/wav_writer.h"
#include "engine_api/effects/audio_effect_module.h"
#include "engine_api/effects/audio_karaoke_effect_module.h"
#include "harness/block_samples.h"
#include "harness/fill_frame.h"
#include "harness/leave_alive.h"
#include "harness/read_block.h"

using harness::BlockSamples;
using harness::FillFrame;
using harness::FrameSamples;
using harness::LeaveAlive;
using harness::ReadBlock;

// All of the karaoke chain over "voice_record.wav".
// Deliberate: rate / 100 * channels samples go into a frame and as many as were read come out of
// it; at 22050 Hz stereo every 441st sample of the output is 0. With one count for both there would
// be no gap.
void TestEqReverb() {
  auto* m_effect = new AudioKaraokeEffectModule;
  m_effect->EnableDrc(true);
  m_effect->EnableEqReverb(true);
  m_effect->SetEqualizerEnable(true);
  EqGains eqGains = {0.0F, -5.7F, 0.0F, -4.6F, 0.0F, 4.0F, 4.0F, 3.0F, 2.0F, 1.0F, 1.3F};
  m_effect->SetEqGains(eqGains, true);

  m_effect->EnableReverbFv3(true);
  NreverbFv3Parameter reverbParameter;
  reverbParameter.Factor = 3.6F;
  reverbParameter.Wet = -17.7F;
  reverbParameter.Dry = 3.0F;
  reverbParameter.Feedback = 0.8F;
  reverbParameter.Damp1 = 0.6F;
  reverbParameter.Damp2 = 0.0F;
  reverbParameter.Damp3 = 0.2F;
  reverbParameter.ReverbTime = 2.1F;
  reverbParameter.Width = 0.6F;
  reverbParameter.Delay = 16.0F;
  m_effect->SetReverbFv3Param(reverbParameter);

  m_effect->EnableLimiter(true);
  const LimiterParam limitParameter = {0.0F, -2.0F, 7.0F, 90.0F, 0.0F, 1.0F, 1.0F, 0.0F, 1.0F};
  LimiterParameter parameter = {};  // fFactor and fType stay 0.
  parameter.fCeiling = limitParameter.fCeiling;
  parameter.fThreshold = limitParameter.fThreshold;
  parameter.fPreGain = limitParameter.fPreGain;
  parameter.fRelease = limitParameter.fRelease;
  parameter.fAttack = limitParameter.fAttack;
  parameter.fLookahead = limitParameter.fLookahead;
  parameter.fLookaheadRatio = limitParameter.fLookaheadRatio;
  parameter.fRMS = limitParameter.fRMS;
  parameter.fStLink = limitParameter.fStLink;
  m_effect->SetLimiterParameter(parameter);

  zuwebrtc::WavReader reader("voice_record.wav");
  const int inFs = reader.sample_rate();
  const int inCh = reader.num_channels();
  const auto readSamples = static_cast<unsigned>(inFs * 0.01 * inCh);
  zuwebrtc::WavWriter writer("eqreverb.wav", inFs, inCh);

  short inBuf[8192];
  zuwebrtc::AudioFrame frame;
  while (ReadBlock(reader, inBuf, readSamples)) {
    FillFrame(frame, inBuf, inFs / 100 * inCh, inFs, inCh);
    const uint32_t res = m_effect->Process(frame);
    // Deliberate: a frame that is answered with 0 is missing from the output; written, it would
    // keep the output as long as the input.
    if (res != 0) writer.WriteSamples(frame.data_, FrameSamples(readSamples));
  }

  LeaveAlive(m_effect);  // Deliberate: not destroyed, what it may hold back is never asked for.
}

// The equaliser alone over "input.wav", 3 dB in the lowest band.
// Deliberate: the two counts of samples are those of TestEqReverb, and as there the module is never
// destroyed.
void TestAudioEffectModule() {
  auto* module = new AudioEffectModule;
  module->SetEqualizerEnable(true);
  // Deliberate: two of the zeros are negative; an engine that looks at the sign can tell.
  EqGains eqGains = {3.0F, -0.0F, 0.0F, -0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F};
  module->SetEqGains(eqGains, true);

  zuwebrtc::WavReader reader("input.wav");
  const int time_ms = 10;
  const int src_fs = reader.sample_rate();
  const int src_ch = reader.num_channels();
  const unsigned read_samples = BlockSamples(src_fs, src_ch, time_ms);
  zuwebrtc::WavWriter writer("effect_out.wav", src_fs, src_ch);

  short inData[8192];
  zuwebrtc::AudioFrame frame;
  while (ReadBlock(reader, inData, read_samples)) {
    FillFrame(frame, inData, src_fs / 100 * src_ch, src_fs, src_ch);
    module->Process(frame);
    writer.WriteSamples(frame.data_, FrameSamples(read_samples));
  }

  LeaveAlive(module);
}
