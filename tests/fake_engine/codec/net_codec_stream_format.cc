#include "fake_engine/codec/net_codec_stream_format.h"

#include "fake_engine/fake_engine.h"

// Nothing is called when a table ends, so its identity ends with the line.
ZUAudio::NetCodecStreamFormat::NetCodecStreamFormat() {
  FakeEngine& engine = FakeEngine::Current();
  engine.Born(this, "NetCodecStreamFormat", "%s", "");
  engine.Forget(this);
  engine.script<NetCodecStreamFormatScript>().fill(*this);
}
