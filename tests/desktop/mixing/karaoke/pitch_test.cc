#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "desktop/dsp/music/pitch_tracker.h"
#include "desktop/mixing/karaoke/note_scorer.h"
#include "support/talk.h"
#include "support/tone.h"
#include "support/voice.h"

using desktop::Note;
using desktop::NoteScorer;
using desktop::PitchTracker;
using testing::Each;

namespace {

// The answers after the first tenth of a second.
std::vector<double> Pitches(const std::vector<short>& samples) {
  PitchTracker tracker;
  std::vector<double> pitches;
  for (size_t at = 0; at + PitchTracker::kHop <= samples.size(); at += PitchTracker::kHop) {
    const double pitch = tracker.Track(&samples[at]);
    if (at >= 1600) pitches.push_back(pitch);
  }
  return pitches;
}

double Hz(double midi) { return 440 * std::pow(2, (midi - 69) / 12); }

const std::vector<Note> kNotes = {
    {1000, 1500, 69}, {1500, 2000, 57}, {2000, 2500, 64}, {2500, 3000, 0}};

class NoteScorerTest : public testing::Test {
 protected:
  void Sing(double from, double to, double midi) {
    for (double time = from; time < to; time += 10) m_scorer.Sing(time, Hz(midi));
  }

  std::array<int8_t, 4> m_visual = {1, 2, 3, 4};
  NoteScorer m_scorer{kNotes, m_visual.data()};
};

}  // namespace

TEST(PitchTracker, FollowsASungNoteWithinTwentyCents) {
  for (const double pitch : {82.4, 110.0, 196.0, 261.6, 440.0, 587.3, 880.0}) {
    for (const double found : Pitches(SungNote(pitch, 16000, 0.5))) {
      EXPECT_NEAR(1200 * std::log2(found / pitch), 0, 20) << pitch;
    }
  }
}

// Two semitones in 100 ms: what a high note says is as old as what a low one says.
TEST(PitchTracker, IsEquallyLateForHighAndLowNotes) {
  for (const double first : {36.0, 48.0, 60.0, 72.0}) {
    PitchTracker tracker;
    double phase = 0;
    double lateMs = 0;
    constexpr int kBlocks = 50;
    for (int block = 0; block < kBlocks; ++block) {
      short samples[PitchTracker::kHop];
      for (size_t i = 0; i < PitchTracker::kHop; ++i) {
        phase +=
            2 * std::numbers::pi * Hz(first + 0.2 * (block + static_cast<double>(i) / 160)) / 16000;
        samples[i] = static_cast<short>(6000 * (std::sin(phase) + std::sin(2 * phase) / 2));
      }
      const double reached = (69 + 12 * std::log2(tracker.Track(samples) / 440) - first) / 0.2;
      if (block >= 10) lateMs += 10 * (block + 1 - reached) / (kBlocks - 10);
    }
    EXPECT_NEAR(lateMs, PitchTracker::kLagMs, 1.5) << first;
  }
}

TEST(PitchTracker, HearsNoPitchInNoiseAndSilence) {
  EXPECT_THAT(Pitches(Hiss(16000, 0.5, 1, -20)), Each(0));
  EXPECT_THAT(Pitches(std::vector<short>(8000)), Each(0));
  EXPECT_THAT(Pitches(Tone(440, 50, 16000, 8000)), Each(0));   // -59 dBFS.
  EXPECT_THAT(Pitches(Tone(440, 130, 16000, 8000)), Each(0));  // -51 dBFS.
  EXPECT_THAT(Pitches(Tone(440, 160, 16000, 8000)), Each(testing::DoubleNear(440, 2)));  // -49.
}

TEST_F(NoteScorerTest, ShowsTenthsOfTheCentsBesideEachNote) {
  EXPECT_THAT(m_visual, Each(127));
  Sing(1000, 1500, 69.02);
  Sing(1500, 2000, 57 - 1);  // A semitone flat.
  m_scorer.Finish();
  EXPECT_THAT(m_visual, testing::ElementsAre(0, -10, 127, 127));
  EXPECT_EQ(m_scorer.NotesToSing(), 3U);
  EXPECT_EQ(m_scorer.NotesSung(), 2U);
  EXPECT_EQ(m_scorer.NotesHit(), 1U);
}

TEST_F(NoteScorerTest, TakesTheMedianAndFoldsOctaves) {
  Sing(1000, 1100, 72);  // A slide into the note.
  Sing(1100, 1500, 69 - 24 + 0.3);
  Sing(1500, 2000, 57 + 12 - 0.4);
  EXPECT_THAT(m_visual, testing::ElementsAre(3, -4, 127, 127));
  m_scorer.Finish();
  EXPECT_EQ(m_scorer.NotesHit(), 2U);  // In another octave, and hit all the same.
}

TEST_F(NoteScorerTest, ShowsANoteOnceThirtyMillisecondsOfItWereSung) {
  m_scorer.Sing(1000, Hz(69));
  m_scorer.Sing(1010, 0);
  m_scorer.Sing(1020, Hz(69));
  EXPECT_EQ(m_visual[0], 127);
  m_scorer.Sing(1030, Hz(69));
  EXPECT_EQ(m_visual[0], 0);
}

TEST_F(NoteScorerTest, StaysWithinHalfAnOctave) {
  Sing(1000, 1500, 69 + 5.99);
  Sing(1500, 2000, 57 - 5.99);
  EXPECT_THAT(m_visual, testing::ElementsAre(60, -60, 127, 127));
}

TEST_F(NoteScorerTest, HearsNothingOutsideOfTheNotes) {
  Sing(0, 1000, 69);
  Sing(2500, 4000, 69);  // A pause of the table, and what follows it.
  m_scorer.Finish();
  EXPECT_THAT(m_visual, Each(127));
  EXPECT_EQ(m_scorer.NotesSung(), 0U);
}

TEST_F(NoteScorerTest, CountsATimeToTheNoteThatBeginsWithIt) {
  for (const double time : {1000.0, 1000.0, 1000.0, 1500.0, 1500.0, 1500.0}) {
    m_scorer.Sing(time, Hz(69.3));
  }
  EXPECT_THAT(m_visual, testing::ElementsAre(3, 3, 127, 127));
}

TEST_F(NoteScorerTest, TakesTheLowerOfTwoMediansAndForgetsTheNoteBefore) {
  Sing(1000, 1020, 69.4);
  Sing(1020, 1040, 69.1);
  EXPECT_EQ(m_visual[0], 1);
  Sing(1500, 1530, 56.8);
  EXPECT_THAT(m_visual, testing::ElementsAre(1, -2, 127, 127));
}

TEST_F(NoteScorerTest, HitsANoteWithinHalfASemitone) {
  Sing(1000, 1500, 69.5);
  Sing(1500, 2000, 56.5);
  Sing(2000, 2500, 64.6);
  m_scorer.Finish();
  EXPECT_THAT(m_visual, testing::ElementsAre(5, -5, 6, 127));
  EXPECT_EQ(m_scorer.NotesSung(), 3U);
  EXPECT_EQ(m_scorer.NotesHit(), 2U);
}

TEST(NoteScorer, SurvivesTablesThatMakeNoSense) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Note> notes = {
      {nan, nan, 60}, {0, 1e30, 2147483647}, {500, 100, -2147483647 - 1}};
  int8_t visual[3];
  NoteScorer scorer(notes, visual);
  for (int i = 0; i < 100; ++i) scorer.Sing(i * 10, Hz(60 + i));
  scorer.Finish();
  EXPECT_EQ(visual[0], 127);
  EXPECT_LE(std::abs(visual[1]), 60);
  EXPECT_EQ(visual[2], 127);
  NoteScorer nobody({}, nullptr);
  nobody.Sing(0, 100);
}
