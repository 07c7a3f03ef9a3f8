// Binaural rendering through head-related impulse responses: each channel of a stereo recording as
// heard at one ear from a source at the right. Listen for clicks at the chunk seams (100 a second)
// and for the side that it comes from.

#include <cstdio>
#include <memory>

#include "bench/effects/routines.h"
#include "engine_api/common/channel_buffer.h"
#include "engine_api/common/interleave.h"
#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"
#include "engine_api/platform/log.h"
#include "harness/pcm_readers.h"
#include "harness/stdio_file.h"

// Filters 44.1 kHz stereo, 10 ms at a time, into interleaved stereo floats.
// Deliberate: each channel goes through its own ear's response only, without down-mix or
// cross-feed. With either, the left output would hear the right input; a mono source is rendered
// for both ears only when it is in both channels.
void TestHRTF() {
  // Deliberate: "TestHrtf" here and at the end, while the routine is called TestHRTF. Spelled
  // alike, a search of the log for today's text would find nothing.
  OutputDebugInfo("TestHrtf..start");

  const int LEN = 8192;
  short left[LEN];
  short right[LEN];
  float left_f[LEN];
  float right_f[LEN];
  int azimuth = 90;
  int elevation = 0;
  const int sampleRate = 44100;
  const int diffused = 0;
  // Deliberate: the answer is not looked at. With a check, a table without this position would
  // leave no output instead of a silent one.
  mit_hrtf_availability(azimuth, elevation, sampleRate, diffused);
  const int taps =
      static_cast<int>(mit_hrtf_get(&azimuth, &elevation, sampleRate, diffused, left, right));
  for (int i = 0; i < taps; ++i) {
    left_f[i] = static_cast<float>(left[i]) / 32768;
    right_f[i] = static_cast<float>(right[i]) / 32768;
  }

  harness::StdioFile in_file("/sdcard/ZUAudioDemo/44100_2.pcm", "rb");
  // Deliberate: named .pcm, "902" included, although the samples are 32-bit floats. Under another
  // name the file would not be found where it is looked for.
  harness::StdioFile out_file("/sdcard/ZUAudioDemo/44100_2_out_902.pcm", "wb");
  // Deliberate: 1765 is four chunks and one sample; with 441 the filters would reserve less.
  std::unique_ptr<zuwebrtc::FIRFilter> filterL(
      zuwebrtc::FIRFilter::Create(left_f, static_cast<size_t>(taps), 1765));
  std::unique_ptr<zuwebrtc::FIRFilter> filterR(
      zuwebrtc::FIRFilter::Create(right_f, static_cast<size_t>(taps), 1765));
  zuwebrtc::ChannelBuffer<float> rev_cb(441, 2, 1);
  zuwebrtc::ChannelBuffer<float> out_cb(441, 2, 1);
  const int max_length = rev_cb.num_frames_ * rev_cb.num_channels_;
  const auto float_data = std::make_unique<float[]>(static_cast<size_t>(max_length));
  const auto int_data = std::make_unique<short[]>(static_cast<size_t>(max_length));
  const size_t out_length = static_cast<size_t>(max_length);

  while (ReadChunk(in_file.get(), int_data.get(), float_data.get(), &rev_cb)) {
    const auto frames = static_cast<size_t>(rev_cb.num_frames_);
    filterL->Filter(rev_cb.channels_[0], frames, out_cb.channels_[0]);
    filterR->Filter(rev_cb.channels_[1], frames, out_cb.channels_[1]);
    zuwebrtc::Interleave(out_cb.channels_.get(), out_cb.num_frames_, out_cb.num_channels_,
                         float_data.get());
    out_file.Write(float_data.get(), sizeof(float), out_length);
  }

  in_file.Close();
  out_file.Close();
  filterL.reset();
  filterR.reset();
  OutputDebugInfo("TestHrtf..end");
}
