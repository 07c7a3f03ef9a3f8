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
  // The MIDI note number, 69 for 440 Hz; 0 or less where nothing is to be sung.
  int midi;
};

// Compares sung pitch with the notes of a song.
class NoteScorer {
 public:
  static constexpr int8_t kNotSung = 127;

  // Marks the notes as not sung. pitchVisual: one for each note, null for none; written from Sing
  // on, so as to be read from other threads at any time.
  NoteScorer(std::vector<Note> notes, int8_t* pitchVisual);

  // Hears a pitch (Hz; 0 for none) at a time of the song, ms; times go up. From 30 ms of a note on
  // it shows the median of what was sung to the note: tenths of a semitone above the note, folded
  // into half an octave above and below.
  void Sing(double timeMs, double pitch);

  // Ends the last note.
  void Finish() { CloseNote(); }

  size_t NotesToSing() const;
  size_t NotesSung() const { return m_sung; }

  // Returns how many were sung within 50 cents, octaves folded.
  size_t NotesHit() const { return m_hit; }

 private:
  int FindNote(double timeMs) const;
  void Show(size_t note, int8_t tenths);
  void CloseNote();

  const std::vector<Note> m_notes;
  int8_t* const m_pitchVisual;
  // The note that is being sung; -1 for none.
  int m_note = -1;
  // How often it was heard by how many tenths of a semitone, -60 to 60, above the note.
  std::array<uint32_t, 121> m_counts;
  uint32_t m_heard = 0;
  int8_t m_median = kNotSung;
  size_t m_sung = 0;
  size_t m_hit = 0;
};

}  // namespace desktop
