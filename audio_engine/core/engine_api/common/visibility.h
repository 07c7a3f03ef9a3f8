#pragma once

// ENGINE_API marks every engine symbol. An engine in a library of its own offers them to the bench;
// AUDIO_ENGINE_BUILT_IN is for one that is linked into the same binary as the bench and is seen by
// nobody else.
//
// ENGINE_C_NAME(name) follows the declaration of a C function whose name a packaged library exports
// as well, with another signature: it gives ours a link name that nobody else has, so that neither
// side binds to the other's.
#ifdef AUDIO_ENGINE_BUILT_IN
#define ENGINE_API __attribute__((visibility("hidden")))
#else
#define ENGINE_API __attribute__((visibility("default")))
#endif
#define ENGINE_C_NAME(name) __asm__("audio_engine_" #name)
