#include "desktop/mixing/karaoke/note_scorer.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace desktop {

namespace {

// How many pitches make a note.
constexpr uint32_t kMinPitches = 3;
constexpr int kMaxTenths = 60;

// Returns how many tenths of a semitone `pitch` is above a note, in the octave that is nearest.
int TenthsAbove(int midi, double pitch) {
  const double semitones = 12 * std::log2(pitch / 440) + 69 - midi;
  const double folded = semitones - 12 * std::floor(semitones / 12 + 0.5);
  return static_cast<int>(std::lround(folded * 10));
}

}  // namespace

NoteScorer::NoteScorer(std::vector<Note> notes, int8_t* pitchVisual)
    : m_notes(std::move(notes)), m_pitchVisual(pitchVisual) {
  m_counts.fill(0);
  for (size_t i = 0; i < m_notes.size(); ++i) Show(i, kNotSung);
}

void NoteScorer::Show(size_t note, int8_t tenths) {
  if (m_pitchVisual == nullptr) return;
  std::atomic_ref(m_pitchVisual[note]).store(tenths, std::memory_order_relaxed);
}

// A table that makes no sense, with times that are no numbers for example, finds nothing.
int NoteScorer::FindNote(double timeMs) const {
  for (size_t i = 0; i < m_notes.size(); ++i) {
    const Note& note = m_notes[i];
    if (timeMs >= note.beginMs && timeMs < note.endMs && note.midi > 0) return static_cast<int>(i);
  }
  return -1;
}

void NoteScorer::Sing(double timeMs, double pitch) {
  const int note = FindNote(timeMs);
  if (note != m_note) CloseNote();
  m_note = note;
  if (note < 0 || pitch <= 0) return;
  const auto at = static_cast<size_t>(note);
  const int tenths = TenthsAbove(std::min(m_notes[at].midi, 127), pitch);
  ++m_counts[static_cast<unsigned>(tenths + kMaxTenths)];
  if (++m_heard < kMinPitches) return;

  uint32_t below = 0;
  size_t median = 0;
  while ((below += m_counts[median]) * 2 < m_heard) ++median;
  m_median = static_cast<int8_t>(static_cast<int>(median) - kMaxTenths);
  Show(at, m_median);
}

void NoteScorer::CloseNote() {
  if (m_median != kNotSung) {
    ++m_sung;
    if (std::abs(m_median) <= 5) ++m_hit;
  }
  m_counts.fill(0);
  m_heard = 0;
  m_median = kNotSung;
}

size_t NoteScorer::NotesToSing() const {
  size_t count = 0;
  for (const Note& note : m_notes) count += note.midi > 0 ? 1 : 0;
  return count;
}

}  // namespace desktop
