#include "engine_api/codec/net_codec_stream_format.h"
#include "harness/catalogue/routines.h"

// Deliberate: a placeholder that builds and discards the default formats and does nothing else.
// More here would read or write files, and this test has none.
void TestSilkMos() { [[maybe_unused]] ZUAudio::NetCodecStreamFormat streamFormatInfo; }
