#include "engine_api/codec/net_codec_stream_format.h"

#include "fake_engine/fake_engine.h"

// Leaves every record as the memory was; which values an engine puts there is not the bench's
// business. Nothing is called when a table ends, so its identity ends with the line.
ZUAudio::NetCodecStreamFormat::NetCodecStreamFormat() {
  FakeEngine& engine = FakeEngine::Current();
  engine.Born(this, "NetCodecStreamFormat", "%s", "");
  engine.Forget(this);
}
