#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace desktop {

// A note of a song.
struct Note {
  double beginMs;
  double endMs;
  int midi;  // 69 = 440 Hz; 0 or less: nothing is to be sung.
};

// Compares sung pitch with the notes of a song.
class NoteScorer {
 public:
  static constexpr int8_t kNotSung = 127;

  // Marks the notes as not sung. pitchVisual: one for each note, null for none; written from Sing
  // on, so as to be read from other threads at any time.
  NoteScorer(std::vector<Note> notes, int8_t* pitchVisual);

  // Hears a pitch (Hz; 0 = none) at a time of the song, ms; times go up. Shows the median of what
  // was sung to the note so far, from 30 ms of it on: tenths of the cents above the note, folded
  // into half an octave above and below.
  void Sing(double timeMs, double pitch);

  void Finish() { CloseNote(); }  // The last note is over.

  size_t NotesToSing() const;
  size_t NotesSung() const { return m_sung; }
  size_t NotesHit() const { return m_hit; }  // Within 50 cents, octaves folded.

 private:
  int FindNote(double timeMs) const;
  void Show(size_t note, int8_t tenths);
  void CloseNote();

  const std::vector<Note> m_notes;
  int8_t* const m_pitchVisual;
  int m_note = -1;                     // That is being sung.
  std::array<uint32_t, 121> m_counts;  // How often which tenth of its cents was heard: -60 to 60.
  uint32_t m_heard = 0;
  int8_t m_median = kNotSung;
  size_t m_sung = 0;
  size_t m_hit = 0;
};

}  // namespace desktop
