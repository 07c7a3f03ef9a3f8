#include "fake_engine/codec/codec_format.h"

#include "engine_api/codec/codec_format.h"
#include "fake_engine/fake_engine.h"

AudioStreamFormat FormatFromRawCodecId(int rawCodecId) {
  FakeEngine& engine = FakeEngine::Current();
  engine.Record("FormatFromRawCodecId(%d)", rawCodecId);
  if (engine.HasNone()) {
    return CodecFormatScript().format(rawCodecId);  // As of an id that is not known.
  }
  return engine.script<CodecFormatScript>().format(rawCodecId);
}
