#pragma once

// Marks every engine symbol. An engine linked into the same binary as the bench stays hidden, so
// that neither side binds to a packaged library's function of the same name; an engine in a library
// of its own is imported.
#ifdef AUDIO_ENGINE_EXTERNAL
#define ENGINE_API __attribute__((visibility("default")))
#else
#define ENGINE_API __attribute__((visibility("hidden")))
#endif
