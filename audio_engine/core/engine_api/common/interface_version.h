#pragma once

// The version of this interface: raised with every change to what the headers beside this one
// declare, so that an engine and a bench that were built on different ones do not meet.
#define AUDIO_ENGINE_INTERFACE 1

// In one source of an engine that is a library of its own, outside of namespaces:
//   AUDIO_ENGINE_INTERFACE_VERSION;
// The library says by it on which version it was built, by a symbol that ends in the number.
#define AUDIO_ENGINE_INTERFACE_SYMBOL "audio_engine_interface_version_"
#define AUDIO_ENGINE_INTERFACE_VERSION AUDIO_ENGINE_INTERFACE_OF(AUDIO_ENGINE_INTERFACE)
#define AUDIO_ENGINE_INTERFACE_OF(version) AUDIO_ENGINE_INTERFACE_NAMED(version)
#define AUDIO_ENGINE_INTERFACE_NAMED(version)                                                 \
  extern "C"                                                                                  \
      __attribute__((visibility("default"))) void audio_engine_interface_version_##version(); \
  void audio_engine_interface_version_##version() {}                                          \
  static_assert(true, "takes the semicolon")
