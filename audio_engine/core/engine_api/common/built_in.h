#pragma once

// For an engine in a library of its own that changes something about the engine which is built into
// the bench: returns the latter's function of this link name (the mangled one of C++), which
// belongs to a facility that the library takes the place of. Null when there is none. The desktop
// engine's objects are as large as those of the library, which are declared by the same headers.
extern "C" __attribute__((visibility("default"))) void* AudioEngineBuiltIn(const char* name);
