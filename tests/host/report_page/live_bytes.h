#pragma once

#include <cstddef>

// What this program has from operator new and has not given back. Link live_bytes.cc for it.

// The most that there was at one time since MarkBytes, less what there was then.
void MarkBytes();
size_t MostBytesSinceMark();
