#pragma once

#include <string>

// The file of a fake WAVE writer that has finished: FakeEngine::wavs[name] after a canonical
// header in FakeEngine::files, for routines that read it byte by byte.
void FinishFakeWav(const std::string& name);
