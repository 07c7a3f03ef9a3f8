#include "engine_api/codec/net_codec_stream_format.h"
#include "harness/catalogue/routines.h"

// Deliberate: a placeholder that builds and discards the default formats and does nothing else. A
// test that encoded something here would need files that no workspace holds.
void TestSilkMos() { [[maybe_unused]] ZUAudio::NetCodecStreamFormat streamFormatInfo; }
