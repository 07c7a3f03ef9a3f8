#pragma once

#include <vector>

// What routines leave open and alive on purpose. A target puts it away after each run, so that a
// search of any length holds no more than one run does.

// Closes the streams that fopen has given since the last call and nobody has closed, and frees the
// buffers that a harness::StdioFile gave up with them. Linked with left_streams.cc and --wrap of
// fopen, fopen64, setvbuf and fclose.
void CloseLeftStreams();

// What harness::LeaveAlive was given since the last call. Linked with left_objects.cc and --wrap of
// that function.
std::vector<const void*> TakeLeftObjects();

// Deletes these objects; all must be of this type.
template <class Object>
void DeleteLeft() {
  for (const void* const object : TakeLeftObjects()) delete static_cast<const Object*>(object);
}
