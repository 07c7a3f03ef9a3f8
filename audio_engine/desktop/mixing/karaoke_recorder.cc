#include "engine_api/mixing/karaoke_recorder.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "desktop/common/counts.h"
#include "desktop/dsp/dynamics/sum_limiter.h"
#include "desktop/dsp/music/pitch_tracker.h"
#include "desktop/files/converted_source.h"
#include "desktop/files/file_sink.h"
#include "desktop/files/open_audio_file.h"
#include "desktop/files/recorded_file.h"
#include "desktop/live/file_player.h"
#include "desktop/live/loudspeaker.h"
#include "desktop/live/microphone.h"
#include "desktop/mixing/karaoke/note_scorer.h"
#include "desktop/mixing/parts/capture_cleaning.h"
#include "desktop/mixing/parts/try_to_start.h"
#include "desktop/platform/callback_scope.h"
#include "desktop/platform/log.h"
#include "engine_api/platform/log.h"

namespace {

using desktop::DeviceFormat;
using desktop::FileFault;
using desktop::FileSink;
using desktop::PitchTracker;
using desktop::Real;
using desktop::RefusesInCallback;

constexpr DeviceFormat kVoice = {44100, 1};
constexpr DeviceFormat kMix = {44100, 2};
// The frames of 10 ms.
constexpr size_t kBlock = kVoice.BlockFrames();
constexpr double kTrackedPerMs = PitchTracker::kRate / 1000.0;

// What becomes of a voice, on the thread of the microphone: it is written, mixed with the song, and
// compared with its notes.
class Recording : public desktop::CaptureListener {
 public:
  struct Files {
    // Each is null where there is none; without a song the mix has silence in its place.
    std::unique_ptr<FileSink> voice;
    std::unique_ptr<FileSink> mix;
    std::unique_ptr<desktop::ConvertedSource> song;
  };

  // player: plays the song, or null. scorer: null for no score.
  Recording(Files files, const desktop::FilePlayer* player,
            std::unique_ptr<desktop::NoteScorer> scorer)
      : m_song(std::move(files.song)), m_player(player), m_scorer(std::move(scorer)) {
    if (files.voice != nullptr) m_voice.emplace(std::move(files.voice), kVoice);
    if (files.mix != nullptr) m_mix.emplace(std::move(files.mix), kMix);
  }

  // Scores the last note. It is called when nothing is captured any more. lines: how many the song
  // has.
  void Finish(size_t lines) {
    if (m_scorer == nullptr) return;
    m_scorer->Finish();
    OutputDebugInfo("karaoke recorder: %zu lines, %zu notes, %zu sung, %zu within 50 cents", lines,
                    m_scorer->NotesToSing(), m_scorer->NotesSung(), m_scorer->NotesHit());
  }

  void OnCaptured(const desktop::CapturedBlock& block) override {
    if (m_voice) m_voice->Put(block.samples);
    if (!m_songStartMs && m_player != nullptr) FindStart(block);
    if (m_mix) Mix(block);
    if (m_scorer != nullptr && m_songStartMs) Score(block);
  }

 private:
  // When, by the microphone's time, the singer heard the song begin: found as soon as it is heard,
  // which is some time after it was handed to the loudspeaker.
  void FindStart(const desktop::CapturedBlock& block) {
    const double heardMs = static_cast<double>(m_player->PlayedMs()) -
                           desktop::Loudspeaker::Shared().Device().LatencyMs();
    if (heardMs > 0) m_songStartMs = block.timeMs + block.latencyMs - heardMs;
  }

  void Mix(const desktop::CapturedBlock& block) {
    short song[kBlock * kMix.channels] = {};
    if (m_song != nullptr && m_songStartMs && block.timeMs >= *m_songStartMs) {
      m_song->Read(song, kBlock);
    }
    int32_t sums[kBlock * kMix.channels];
    for (size_t i = 0; i < std::size(sums); ++i) sums[i] = song[i] + block.samples[i / 2];
    m_limiter.Process(sums, kBlock, kMix.channels, song);
    m_mix->Put(song);
  }

  void Score(const desktop::CapturedBlock& block) {
    short samples[PitchTracker::kHop];
    m_resampler.Convert(block.samples, kBlock, samples);
    const double pitch = m_tracker.Track(samples);
    const double lagMs = PitchTracker::kLagMs + Real(m_resampler.LagFrames()) / kTrackedPerMs;
    m_scorer->Sing(block.timeMs + 10.0 - lagMs - *m_songStartMs, pitch);
  }

  std::optional<desktop::RecordedFile> m_voice;
  std::optional<desktop::RecordedFile> m_mix;
  const std::unique_ptr<desktop::ConvertedSource> m_song;
  const desktop::FilePlayer* const m_player;
  const std::unique_ptr<desktop::NoteScorer> m_scorer;
  std::optional<double> m_songStartMs;
  desktop::SumLimiter m_limiter;
  desktop::Resampler m_resampler{kBlock, 1, PitchTracker::kHop, 1, kBlock};
  PitchTracker m_tracker;
};

class KaraokeRecorder : public IKaraokeRecorder {
 public:
  ~KaraokeRecorder() override { KaraokeRecorder::Stop(); }

  bool OpenInputFile(char* guideFile, char* accompanyFile) override {
    if (RefusesInCallback(this, "IKaraokeRecorder::OpenInputFile")) return false;
    Stop();
    m_songFile.clear();
    for (const char* name : {accompanyFile, guideFile}) {
      if (m_player.Open(name) != FileFault::kNone) continue;
      m_songFile = name;
      return true;
    }
    return false;
  }

  bool OpenOutputFile(char* voiceFile, char* mixFile) override {
    if (RefusesInCallback(this, "IKaraokeRecorder::OpenOutputFile")) return false;
    Stop();
    const bool voice = OpenSink(voiceFile, kVoice, &m_files.voice);
    const bool mix = OpenSink(mixFile, kMix, &m_files.mix);
    return voice && mix;
  }

  void SetLineInfo(ScoreLineInfo* lines, int count) override {
    m_lines.assign(lines, lines + std::max(count, 0));
  }

  void SetScoreTimeRange(ScoreTimeRange* notes, uint32_t count, int8_t* pitchVisual) override {
    m_notes.clear();
    for (uint32_t i = 0; i < count; ++i) {
      m_notes.push_back({notes[i].beginTime, notes[i].endTime, notes[i].midiValue});
    }
    m_pitchVisual = pitchVisual;
  }

  bool Start() override {
    if (RefusesInCallback(this, "IKaraokeRecorder::Start")) return false;
    if (m_recording != nullptr) return false;
    if (m_files.voice == nullptr && m_files.mix == nullptr) {
      desktop::LogRefusal("karaoke recorder: there is no file to record into");
      return false;
    }
    const bool starts = desktop::TryToStart("karaoke recorder:", [&] { return Record(); });
    if (!starts) Stop();
    return starts;
  }

  void Stop() override {
    if (RefusesInCallback(this, "IKaraokeRecorder::Stop")) return;
    m_player.Stop();
    if (m_recording == nullptr) return;
    m_microphone = nullptr;
    m_recording->Finish(m_lines.size());
    m_recording = nullptr;
  }

  void Destroy() override {
    if (!RefusesInCallback(this, "IKaraokeRecorder::Destroy")) delete this;
  }

 private:
  bool Record() {
    const bool hasSong = !m_songFile.empty();
    auto scorer = std::make_unique<desktop::NoteScorer>(m_notes, m_pitchVisual);
    if (!hasSong) scorer = nullptr;
    if (hasSong && m_files.mix != nullptr) m_files.song = OpenSong();
    m_recording = std::make_unique<Recording>(std::move(m_files), hasSong ? &m_player : nullptr,
                                              std::move(scorer));
    m_files = {};
    m_microphone = std::make_unique<desktop::Microphone>(kVoice, desktop::CleansCapture());
    m_microphone->Add(m_recording.get());
    if (!m_microphone->Start()) return false;
    if (hasSong) m_player.Play();
    return true;
  }

  // Returns true without a name too.
  static bool OpenSink(const char* name, DeviceFormat format, std::unique_ptr<FileSink>* sink) {
    *sink = nullptr;
    if (name == nullptr || *name == '\0') return true;
    *sink = FileSink::Create(name, format, false);
    return *sink != nullptr;
  }

  std::unique_ptr<desktop::ConvertedSource> OpenSong() const {
    std::unique_ptr<desktop::FileSource> source;
    if (desktop::OpenAudioFile(m_songFile.c_str(), &source) != FileFault::kNone) return nullptr;
    return desktop::ConvertedSource::Create(std::move(source), kMix);
  }

  desktop::FilePlayer m_player;
  // Empty without a song.
  std::string m_songFile;
  Recording::Files m_files;
  std::vector<ScoreLineInfo> m_lines;
  std::vector<desktop::Note> m_notes;
  int8_t* m_pitchVisual = nullptr;
  std::unique_ptr<Recording> m_recording;
  std::unique_ptr<desktop::Microphone> m_microphone;
};

}  // namespace

void UseAndroidOpenSlEs(bool /*use*/) {}

IKaraokeRecorder* IKaraokeRecorder::Create() { return new KaraokeRecorder; }
