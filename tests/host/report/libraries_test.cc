#include "report/libraries.h"

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>

namespace host {
namespace {

bool IsListed(const std::string& name) {
  return std::ranges::any_of(LoadedLibraries(),
                             [&](const LibraryVersion& each) { return each.name == name; });
}

// A library that this test does not need and that is there with the engine.
std::pair<std::string, void*> LoadAnother() {
  for (const auto& [name, file] :
       {std::pair("speexdsp", "libspeexdsp.so.1"), std::pair("opus", "libopus.so.0"),
        std::pair("SoundTouch", "libSoundTouch.so.1"), std::pair("vorbis", "libvorbis.so.0")}) {
    if (IsListed(name)) continue;
    if (void* const handle = dlopen(file, RTLD_LAZY)) return {name, handle};
  }
  return {};
}

TEST(LoadedLibraries, AreLookedForAgainWhenSomeComeOrGo) {
  ASSERT_TRUE(IsListed("glibc"));
  const LibraryVersion* const before = LoadedLibraries().data();
  EXPECT_EQ(LoadedLibraries().data(), before) << "looked for again, with nothing loaded since";

  const auto [name, handle] = LoadAnother();
  ASSERT_NE(handle, nullptr);
  EXPECT_TRUE(IsListed(name)) << name;
  dlclose(handle);
  EXPECT_FALSE(IsListed(name)) << name;
}

// Those that can be asked, of whatever is installed.
TEST(LoadedLibraries, SayTheirVersionsThemselves) {
  size_t asked = 0;
  for (const auto& [name, file] :
       {std::pair("FLAC", "libFLAC.so.12"), std::pair("glibc", "libc.so.6"),
        std::pair("opus", "libopus.so.0"), std::pair("PulseAudio", "libpulse.so.0"),
        std::pair("sndfile", "libsndfile.so.1"), std::pair("SoundTouch", "libSoundTouch.so.1"),
        std::pair("soxr", "libsoxr.so.0"), std::pair("speex", "libspeex.so.1"),
        std::pair("vorbis", "libvorbis.so.0")}) {
    void* const handle = dlopen(file, RTLD_LAZY);
    if (handle == nullptr) continue;
    ++asked;
    const auto& all = LoadedLibraries();
    const auto found = std::ranges::find(all, std::string(name), &LibraryVersion::name);
    ASSERT_NE(found, all.end()) << name;
    EXPECT_TRUE(found->own) << name;
    EXPECT_THAT(found->version, testing::ContainsRegex("[0-9]+[.][0-9]+")) << name;
    dlclose(handle);
  }
  EXPECT_GE(asked, 6U);
}

}  // namespace
}  // namespace host
