#pragma once

#include <cstdint>

#include "../common/visibility.h"

// When a line of a song's text is sung. Times in ms from the start of the accompaniment.
struct ScoreLineInfo {
  int lineIdx;
  float lineStartTime;
  float lineEndTime;
};

// A note that is to be sung, ms from the start of the accompaniment.
struct ScoreTimeRange {
  float beginTime;
  float endTime;
  uint32_t lineID;
  uint8_t lineEnd;  // 1 for the last note of its line.
  int midiValue;    // 69 = 440 Hz; 0 or less: nothing is to be sung.
};

// Chooses the audio backend of machines that have two; the desktop engine has one. Any thread.
ENGINE_API void UseAndroidOpenSlEs(bool use);

// Plays an accompaniment, records the voice that sings to it and compares its pitch with the notes
// of the song. The object belongs to one thread, and to none on which the engine calls a notify.
class ENGINE_API IKaraokeRecorder {
 public:
  // A new recorder, owned by the caller until Destroy; never null.
  static IKaraokeRecorder* Create();

  // What is played: a guide (voice and accompaniment) and the accompaniment alone, which is played
  // when it can be read, else the guide. False when neither can; the voice is recorded all the
  // same.
  virtual bool OpenInputFile(char* guideFile, char* accompanyFile) = 0;

  // Where the voice goes, and the voice with the accompaniment; "" for no such file. AAC or WAVE by
  // the ending. False, with one line in the log, when a file cannot be written.
  virtual bool OpenOutputFile(char* voiceFile, char* mixFile) = 0;

  // Copies the lines of the song.
  virtual void SetLineInfo(ScoreLineInfo* lines, int count) = 0;

  // Copies the notes. pitchVisual[i] shows how note i was sung, from Start to Destroy: 127 = not
  // yet, else tenths of the cents above the note, -60 to 60. Octaves are folded, so that a note
  // sung an octave higher or lower shows 0, and counts as a hit in the log line that ends a
  // recording. The array is the caller's and is not touched after Destroy.
  virtual void SetScoreTimeRange(ScoreTimeRange* notes, uint32_t count, int8_t* pitchVisual) = 0;

  // Starts to play and to record. False when no file can be written.
  virtual bool Start() = 0;

  // Ends a recording: its files are finished.
  virtual void Stop() = 0;

  // Stops and deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IKaraokeRecorder() = default;
};
