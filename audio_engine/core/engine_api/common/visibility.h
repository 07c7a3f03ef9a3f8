#pragma once

// ENGINE_API marks every engine symbol. An engine linked into the same binary as the bench stays
// hidden, so that neither side binds to a packaged library's function of the same name; an engine
// in a library of its own is imported.
//
// ENGINE_C_NAME(name) follows the declaration of a C function whose name a packaged library exports
// as well, with another signature: it gives ours a link name that nobody else has. An engine in a
// library of its own keeps the plain name.
#ifdef AUDIO_ENGINE_EXTERNAL
#define ENGINE_API __attribute__((visibility("default")))
#define ENGINE_C_NAME(name)
#else
#define ENGINE_API __attribute__((visibility("hidden")))
#define ENGINE_C_NAME(name) __asm__("audio_engine_" #name)
#endif
