// A compressor, whole and broken, over material like speech and like music: each fault is seen, and
// the whole one, as other sound routines, is not said to fail.

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "guards/treatments.h"

namespace host {
namespace {

struct Material {
  const char* name;
  Sound sound;
};

const std::vector<Material>& Materials() {
  static const std::vector<Material> materials = {
      {"speech, 16 kHz, mono", Integers(Speech(4, 1, 16000))},
      {"speech, stereo", Integers(Speech(4, 2))},
      {"speech of floats", Speech(4, 2)},
      {"music", Integers(Music(4))},
      {"music, 44.1 kHz, mono", Integers(Music(4, 1, 44100))}};
  return materials;
}

Sound LikeInput(const Sound& input, Sound output) {
  return input.bits > 0 ? Integers(std::move(output)) : output;
}

// What the compressor does with a fault behind it.
std::vector<GuardHit> Treated(const Material& material, const std::function<Sound(Sound)>& fault) {
  return Check(material.sound, LikeInput(material.sound, fault(Compressed(material.sound))));
}

TEST(BrokenCompressor, MuteFails) {
  for (const Material& material : Materials()) {
    const auto hits = Treated(material, [](Sound sound) { return Louder(std::move(sound), -200); });
    EXPECT_EQ(Names(hits), "SILENT") << material.name;
  }
}

TEST(BrokenCompressor, InvertedIsSeen) {
  for (const Material& material : Materials()) {
    EXPECT_EQ(Names(Treated(material, Inverted)), "inverted") << material.name;
  }
}

TEST(BrokenCompressor, OneSampleIn40ZeroedIsSeen) {
  for (const Material& material : Materials()) {
    EXPECT_EQ(Names(Treated(material, OneIn40Zeroed)), "click") << material.name;
  }
}

TEST(BrokenCompressor, FourTimesTooLoudAndClippedIsSeen) {
  for (const Material& material : Materials()) {
    const auto hits = Treated(material, FourTimesAndClipped);
    if (material.sound.bits > 0) {
      EXPECT_NE(Names(hits).find("CLIPPED"), std::string::npos) << material.name << Names(hits);
    }
    EXPECT_NE(Names(hits), "") << material.name;
  }
}

TEST(BrokenCompressor, ADropOutOf5MillisecondsFails) {
  for (const Material& material : Materials()) {
    const double place = std::string(material.name).starts_with("music") ? 1.13 : 2.16;
    const auto hits =
        Treated(material, [&](Sound sound) { return Cut(std::move(sound), place, 0.005); });
    const GuardHit* hit = Find(hits, Guard::kDropout);
    ASSERT_NE(hit, nullptr) << material.name << ": " << Names(hits);
    EXPECT_TRUE(hit->fails);
    EXPECT_NEAR(*hit->at, place, 0.001);
  }
}

TEST(BrokenCompressor, AnOffsetIsSeen) {
  for (const Material& material : Materials()) {
    const auto hits =
        Treated(material, [](Sound sound) { return Shifted(std::move(sound), 0.02); });
    EXPECT_EQ(Names(hits), "dc") << material.name;
  }
}

TEST(BrokenCompressor, SwappedChannelsAreSeen) {
  for (const Material& material : Materials()) {
    if (material.sound.channels != 2) continue;
    EXPECT_EQ(Names(Treated(material, Swapped)), "swapped") << material.name;
  }
}

TEST(SoundRoutine, NothingIsSaidOfOneThatIsWhole) {
  const std::vector<std::pair<const char*, std::function<Sound(Sound)>>> treatments = {
      {"compressor", Compressed},
      {"equalizer", Equalized},
      {"reverb", Reverberant},
      {"softer", [](Sound sound) { return Louder(std::move(sound), -9); }},
      {"delay", [](const Sound& sound) { return Louder(Later(sound, 0.2), -1); }}};
  for (const Material& material : Materials()) {
    for (const auto& [name, treatment] : treatments) {
      const auto hits = Check(material.sound, LikeInput(material.sound, treatment(material.sound)));
      EXPECT_EQ(Names(hits), "") << name << " of " << material.name;
    }
  }
}

}  // namespace
}  // namespace host
