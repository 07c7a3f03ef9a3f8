#include "catalogue/routines.h"
#include "engine_api/codec/net_codec_stream_format.h"

// Deliberate: a placeholder that builds and discards the default formats and does nothing else.
// More here would read or write files, and this test has none.
void TestSilkMos() { [[maybe_unused]] ZUAudio::NetCodecStreamFormat streamFormatInfo; }
