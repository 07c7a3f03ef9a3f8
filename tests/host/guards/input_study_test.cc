#include "guards/input_study.h"

#include <gmock/gmock.h>

#include <span>
#include <string>
#include <vector>

#include "guards/pairing.h"
#include "guards/sounds.h"
#include "guards/treatments.h"

namespace host {
namespace {

// Counts what is read of a sound.
class Counted : public SampleSource {
 public:
  explicit Counted(const Sound& sound) : m_sound(sound) {}

  Signal AsSignal() {
    Signal signal = m_sound.AsSignal();
    signal.samples = {*this, m_sound.samples.size()};
    return signal;
  }
  size_t Read() const { return m_read; }

  std::span<const float> View(size_t first, size_t count) override {
    m_read += count;
    return std::span(m_sound.samples).subspan(first, count);
  }

 private:
  const Sound& m_sound;
  size_t m_read = 0;
};

std::vector<std::string> TextsOf(const GuardInput& input) {
  std::vector<std::string> texts;
  for (const GuardHit& hit : CheckGuards(input)) {
    texts.push_back(std::string(hit.Name()) + " " + std::to_string(hit.at.value_or(-1)) + " " +
                    std::to_string(hit.channel.value_or(-1)) + " " + hit.text);
  }
  return texts;
}

// Outputs that were made of one input, of which each hits something else.
std::vector<Sound> OutputsOf(const Sound& input) {
  return {input, Inverted(input), FourTimesAndClipped(input), Cut(input, 1, 0.1),
          Later(Louder(input, 20), 0.01)};
}

TEST(InputStudy, ChangesNothingOfWhatIsFound) {
  const Sound sound = Speech(3);
  const Signal input = sound.AsSignal();
  InputStudy study(input);
  for (const Sound& each : OutputsOf(sound)) {
    const Signal output = each.AsSignal();
    GuardInput judged = {.input = &input, .output = &output, .rules = {}, .facts = {}};
    const std::vector<std::string> alone = TextsOf(judged);
    EXPECT_THAT(alone, testing::Not(testing::IsEmpty()));
    judged.study = &study;
    EXPECT_EQ(TextsOf(judged), alone);
  }
}

// Of what is left to read for the second output the most is for `click`, which reads all once.
TEST(InputStudy, ReadsTheInputOnceForWhatItHasInItself) {
  const Sound sound = Speech(3);
  const Sound louder = Louder(sound, 3);
  Counted counted(sound);
  const Signal input = counted.AsSignal();
  const Signal output = louder.AsSignal();
  InputStudy study(input);
  const GuardInput judged = {
      .input = &input, .output = &output, .rules = {}, .facts = {}, .study = &study};
  CheckGuards(judged);
  const size_t first = counted.Read();
  CheckGuards(judged);
  const size_t second = counted.Read() - first;
  EXPECT_GE(first, second + sound.samples.size());
}

TEST(InputStudy, KeepsWhatBelongsToOtherChannelsAndRatesApart) {
  const Sound sound = Sine(440, 0.5, 1, 2);
  const Signal input = sound.AsSignal();
  InputStudy study(input);
  EXPECT_EQ(study.Survey(2).size(), 2U);
  EXPECT_EQ(study.Survey(1).size(), 1U);
  study.Keep({48000, 0, 100}, {{1, 0}});
  EXPECT_NE(study.Find({48000, 0, 100}), nullptr);
  EXPECT_EQ(study.Find({44100, 0, 100}), nullptr);
  EXPECT_EQ(study.Find({48000, 1, 100}), nullptr);
  EXPECT_EQ(study.Find({48000, 0, 101}), nullptr);
}

}  // namespace
}  // namespace host
