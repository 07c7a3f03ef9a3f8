#include "report/libraries.h"

#include <dlfcn.h>
#include <link.h>

#include <utility>

#include "report/built_with.h"
#include "report/fdk_aac_version.h"

namespace host {

namespace {

// What a library says of its version, each in its own way. `function` is what has the declared
// symbol.
using Tell = std::string (*)(void* function);

std::string Text(const char* text) { return text == nullptr ? "" : text; }

// "const char* version()"
std::string Plain(void* function) { return Text(reinterpret_cast<const char* (*)()>(function)()); }

// A variable: "const char* version".
std::string Variable(void* variable) { return Text(*static_cast<const char* const*>(variable)); }

std::string Speex(void* function) {
  constexpr int kGetVersionString = 9;
  const char* text = nullptr;
  reinterpret_cast<int (*)(int, void*)>(function)(kGetVersionString, static_cast<void*>(&text));
  return Text(text);
}

std::string FdkAac(void* /*function*/) {
  if constexpr (built_with::kFdkAac) return FdkAacVersion();
  return "";
}

struct Library {
  const char* name;
  const char* file;    // As the linker knows it.
  const char* symbol;  // By which it tells its version; null when by none.
  Tell tell;
  const char* atBuild;  // The version of its package; empty where that was not there.
};

constexpr Library kLibraries[] = {
    {"fdk-aac", "libfdk-aac.so.2", "aacDecoder_GetLibInfo", FdkAac, built_with::kFdkAacPackage},
    {"FLAC", "libFLAC.so.12", "FLAC__VERSION_STRING", Variable, ""},
    {"glibc", "libc.so.6", "gnu_get_libc_version", Plain, ""},
    {"Highway", "libhwy.so.1", nullptr, nullptr, built_with::kHighway},
    {"KissFFT", "libkissfft-float.so.131", nullptr, nullptr, built_with::kKissFft},
    {"opencore-amrwb", "libopencore-amrwb.so.0", nullptr, nullptr, built_with::kOpencoreAmrwb},
    {"opus", "libopus.so.0", "opus_get_version_string", Plain, built_with::kOpus},
    {"PulseAudio", "libpulse.so.0", "pa_get_library_version", Plain, built_with::kPulse},
    {"sndfile", "libsndfile.so.1", "sf_version_string", Plain, built_with::kSndfile},
    // Its static member getVersionString(), as the C++ compiler names it.
    {"SoundTouch", "libSoundTouch.so.1", "_ZN10soundtouch10SoundTouch16getVersionStringEv", Plain,
     built_with::kSoundTouch},
    {"soxr", "libsoxr.so.0", "soxr_version", Plain, built_with::kSoxr},
    {"speex", "libspeex.so.1", "speex_lib_ctl", Speex, built_with::kSpeex},
    {"speexdsp", "libspeexdsp.so.1", nullptr, nullptr, built_with::kSpeexDsp},
    {"vo-amrwbenc", "libvo-amrwbenc.so.0", nullptr, nullptr, built_with::kVoAmrwbenc},
    {"vorbis", "libvorbis.so.0", "vorbis_version_string", Plain, ""},
    {"webrtc-audio-processing", "libwebrtc_audio_processing.so.1", nullptr, nullptr,
     built_with::kWebrtc},
};

// How often this process has loaded and unloaded libraries.
struct Loads {
  unsigned long long loaded = 0;
  unsigned long long unloaded = 0;
  bool operator==(const Loads&) const = default;
};

Loads CountLoads() {
  Loads loads;
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t /*size*/, void* data) {
        *static_cast<Loads*>(data) = {info->dlpi_adds, info->dlpi_subs};
        return 1;
      },
      &loads);
  return loads;
}

// To ask for a library that is not loaded goes through all folders that may have it.
std::vector<LibraryVersion> AskForEach() {
  std::vector<LibraryVersion> loaded;
  for (const Library& library : kLibraries) {
    void* const handle = dlopen(library.file, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) continue;
    LibraryVersion version = {.name = library.name, .version = library.atBuild};
    void* const symbol = library.tell != nullptr ? dlsym(handle, library.symbol) : nullptr;
    const std::string told = symbol != nullptr ? library.tell(symbol) : "";
    if (!told.empty()) {
      version.version = told;
      version.own = true;
    }
    loaded.push_back(std::move(version));
    dlclose(handle);
  }
  return loaded;
}

}  // namespace

const std::vector<LibraryVersion>& LoadedLibraries() {
  static std::vector<LibraryVersion> known;
  static Loads knownAt;
  if (const Loads now = CountLoads(); now != knownAt) {
    known = AskForEach();
    knownAt = now;
  }
  return known;
}

Json LibrariesJson() {
  Json json = Json::array();
  for (const LibraryVersion& library : LoadedLibraries()) {
    json.push_back({{"name", library.name},
                    {"version", Fact(library.version, "it does not tell, and had no package")},
                    {"told_by", library.own ? "library" : "build"}});
  }
  return json;
}

}  // namespace host
