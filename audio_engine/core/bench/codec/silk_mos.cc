// The record of the network formats by itself. Nothing is read, written or heard.

#include "bench/codec/routines.h"
#include "engine_api/codec/net_codec_stream_format.h"

// Deliberate: a placeholder that builds and discards the default formats and does nothing else.
void TestSilkMos() { [[maybe_unused]] ZUAudio::NetCodecStreamFormat streamFormatInfo; }
