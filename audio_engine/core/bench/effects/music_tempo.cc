// The beat and the tempo of a piece of music, 10 ms at a time. Look at how early and how steadily
// the beats are told, and whether the tempo is not a half or twice what one would tap.

#include <BPMDetect.h>

#include <cstdio>

#include "bench/effects/routines.h"
#include "engine_api/common/wav_reader.h"
#include "engine_api/effects/beat_track.h"
#include "engine_api/platform/clock.h"
#include "harness/read_block.h"

using harness::ReadBlock;

// The engine's beat tracker.
void TestBeatTrack() {
  // Writes each beat with the time of the engine's clock to "BeatTrack.txt".
  class BeatTrackNotify : public IBeatTrackNotify {
   public:
    BeatTrackNotify() : m_fid(fopen("BeatTrack.txt", "wb")) {}
    ~BeatTrackNotify() override {
      if (m_fid != nullptr) fclose(m_fid);
    }
    BeatTrackNotify(const BeatTrackNotify&) = delete;
    BeatTrackNotify& operator=(const BeatTrackNotify&) = delete;

    void NotifyBeat(int bpm, float power) override {
      if (m_fid == nullptr) return;
      fprintf(m_fid, "bpm = %d, power = %f, time = %u\n", bpm, static_cast<double>(power),
              GetExactTickCount());
    }

    void NotifyStartFive() override {
      if (m_fid == nullptr) return;
      fprintf(m_fid, "Notify Start, time = %u\n", GetExactTickCount());
    }

   private:
    FILE* m_fid;
  };

  zuwebrtc::WavReader wavReader("yedegangqinqu_Fs44100_Ch1.wav");
  const int sampleRate = wavReader.sample_rate();
  const int channels = wavReader.num_channels();
  const int length10Ms = sampleRate * channels / 100;

  IBeatTrack* p = CreateBeatTrack(sampleRate, channels);
  auto* const notify = new BeatTrackNotify;
  const int mode = 0;
  const int delayDecision = 0;
  p->Start(mode, notify, delayDecision);

  short buf[8192];
  while (ReadBlock(wavReader, buf, static_cast<unsigned>(length10Ms))) {
    const int res = p->Detectbeat(buf, length10Ms);
    if (res != 0) printf("TestBeatTrack: res = %d.\n", res);
  }

  p->Stop();
  p->Destroy();
  delete notify;
}

// The tempo alone, by the library. What it throws, at a rate below 8000 Hz for one, goes to the
// caller.
void TestSoundTouchBpm() {
  zuwebrtc::WavReader wavReader("yedegangqinqu_Fs44100_Ch1.wav");
  const int sampleRate = wavReader.sample_rate();
  const int channels = wavReader.num_channels();
  const int length10Ms = sampleRate * channels / 100;
  soundtouch::BPMDetect bpmDector(channels, sampleRate);

  float buf[8192];
  while (ReadBlock(wavReader, buf, static_cast<unsigned>(length10Ms))) {
    bpmDector.inputSamples(buf, length10Ms / channels);
  }

  const float bpmValue = bpmDector.getBpm();
  printf("bpm=%f\n", static_cast<double>(bpmValue));
}  // Destroys the detector, then closes the reader.
