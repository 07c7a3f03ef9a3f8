// Karaoke: a recorded voice mixed with its accompaniment into a file, and a recorder that plays,
// records and scores. Listen for the voice 200 ms later than it was sung, for its reverb, and for
// the limiter on loud passages.

#include <atomic>
#include <string>
#include <vector>

#include "bench/mixing/routines.h"
#include "engine_api/mixing/karaoke_file_mixer.h"
#include "engine_api/mixing/karaoke_recorder.h"
#include "engine_api/platform/clock.h"
#include "engine_api/platform/paths.h"
#include "harness/leave_alive.h"
#include "harness/stdio_file.h"

using harness::LeaveAlive;
using harness::StdioFile;

namespace {

constexpr int kMaxLines = 1000;
constexpr int kMaxNotes = 8000;

// True while there is something to read; a file that is not open has nothing.
bool Readable(const StdioFile& file) { return file.get() != nullptr && feof(file.get()) == 0; }

// Reads lines "index start end" until the end of the file. How many there are.
// Deliberate: whether the file has ended is asked before a line is read, so a newline at the end
// counts as one line more, which holds nothing. Asked afterwards, the count would be one less.
int ReadLines(const StdioFile& file, ScoreLineInfo* lines) {
  int lineNum = 0;
  while (Readable(file) && lineNum < kMaxLines) {
    ScoreLineInfo& line = lines[lineNum];
    const int fields =
        fscanf(file.get(), "%d %f %f", &line.lineIdx, &line.lineStartTime, &line.lineEndTime);
    if (fields != 3 && Readable(file)) break;  // No number: it would be met again for ever.
    ++lineNum;
  }
  return lineNum;
}

// Reads notes "begin end lineEnd line midi", counted as lines are.
// Deliberate: the third column is the end of the line and the fourth the line, while the record has
// them the other way round. In the record's order every note would belong to line 0 or 1.
int ReadNotes(const StdioFile& file, ScoreTimeRange* notes) {
  int noteNum = 0;
  while (Readable(file) && noteNum < kMaxNotes) {
    ScoreTimeRange& note = notes[noteNum];
    int lineEnd = 0;
    int lineID = 0;
    const int fields = fscanf(file.get(), "%f %f %d %d %d", &note.beginTime, &note.endTime,
                              &lineEnd, &lineID, &note.midiValue);
    if (fields != 5 && Readable(file)) break;
    note.lineEnd = static_cast<uint8_t>(lineEnd);  // Of a larger number the low byte.
    note.lineID = static_cast<uint32_t>(lineID);
    ++noteNum;
  }
  return noteNum;
}

}  // namespace

// Mixes "voice_record.wav" with "music.wav" into "output.aac", all in the engine's debug folder,
// and waits until the engine says that it has finished.
void TestKaraokeFileMixer() {
  static std::atomic<bool> isFinish = false;
  class FileMixerNotify : public IKaraokeFileMixerNotify {
   public:
    void OnFileMixerState(uint32_t, uint32_t) override {}
    void OnFinishMixer() override { isFinish.store(true, std::memory_order_relaxed); }
  };
  IKaraokeFileMixer* const fileMixer = IKaraokeFileMixer::Create();
  // Deliberate: never deleted. The mixer's thread may still be in it when the flag is seen.
  auto* const mixerNotify = new FileMixerNotify;
  LeaveAlive(mixerNotify);
  std::string voiceFileName = GetDebugPath() + "voice_record.wav";
  std::string accomFileName = GetDebugPath() + "music.wav";
  std::string outputFileName = GetDebugPath() + "output.aac";

  fileMixer->Open(voiceFileName.data(), accomFileName.data());
  fileMixer->SetKaraokeFileMixerNotify(mixerNotify);
  fileMixer->SetVoiceOffset(200);
  fileMixer->EnableEqualizer(true);
  EqGains eqGains = {0.0F, -5.7F, -1.5F, -4.6F, -3.4F, 2.7F, 2.3F, 0.6F, 2.1F, 1.0F, 1.3F};
  fileMixer->SetEqGains(eqGains);
  fileMixer->EnableReverbNew(true);
  const NreverbFv3Parameter reverbParameter = {.Factor = 3.6F,
                                               .Wet = -27.05F,
                                               .Dry = 4.53F,
                                               .Feedback = 0.8F,
                                               .Damp1 = 0.6F,
                                               .Damp2 = 0.0F,
                                               .Damp3 = 0.2F,
                                               .ReverbTime = 2.02F,
                                               .Width = 0.56F,
                                               .Delay = 100.84F};
  fileMixer->SetReverbFv3Param(reverbParameter);
  fileMixer->EnableLimiter(true);
  const LimiterParam limitParameter = {.fCeiling = 0.0F,
                                       .fThreshold = -2.0F,
                                       .fPreGain = 8.2F,
                                       .fRelease = 90.0F,
                                       .fAttack = 0.0F,
                                       .fLookahead = 0.2F,
                                       .fLookaheadRatio = 1.0F,
                                       .fRMS = 0.0F,
                                       .fStLink = 1.0F};
  fileMixer->SetLimiterParam(limitParameter);

  fileMixer->Start(outputFileName.data());
  while (!isFinish.load(std::memory_order_relaxed)) SleepMs(10);

  fileMixer->Stop();
  fileMixer->Destroy();
  isFinish.store(false, std::memory_order_relaxed);
}

// Scores 100 ms of a recording against the lines and notes of a song.
void TestKaraokeRecorder() {
  std::vector<ScoreLineInfo> lineArray(kMaxLines);
  std::vector<ScoreTimeRange> noteArray(kMaxNotes);
  std::vector<int8_t> pitchVisual(kMaxNotes);
  char mixName[] = "/sdcard/dangni_mix.wav";
  char accName[] = "/sdcard/dangni_acc.wav";
  char voiceName[] = "/sdcard/voice_record.wav";
  char noName[] = "";
  UseAndroidOpenSlEs(true);
  IKaraokeRecorder* const recorder = IKaraokeRecorder::Create();
  recorder->OpenInputFile(mixName, accName);
  recorder->OpenOutputFile(voiceName, noName);

  StdioFile fid_line("/sdcard/dangni_line_info.txt", "rb");
  const int lineNum = ReadLines(fid_line, lineArray.data());
  fid_line.Close();
  StdioFile fid_note("/sdcard/dangni_score_time_range.txt", "rb");
  const int noteNum = ReadNotes(fid_note, noteArray.data());
  fid_note.Close();
  recorder->SetLineInfo(lineArray.data(), lineNum);
  recorder->SetScoreTimeRange(noteArray.data(), static_cast<uint32_t>(noteNum), pitchVisual.data());

  recorder->Start();
  SleepMs(100);
  recorder->Destroy();
}
