#include "engine_api/codec/net_codec_stream_format.h"

#include "fake_engine/fake_engine.h"

// Leaves every record as the memory was; which values an engine puts there is not the bench's
// business.
ZUAudio::NetCodecStreamFormat::NetCodecStreamFormat() {
  FakeEngine::Current().Record("NetCodecStreamFormat()");
}
