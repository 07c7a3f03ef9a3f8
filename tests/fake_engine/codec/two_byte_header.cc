#include "fake_engine/codec/two_byte_header.h"

#include "engine_api/codec/two_byte_header.h"
#include "fake_engine/fake_engine.h"

int ParseTwoByteHeader(unsigned short header) {
  FakeEngine& engine = FakeEngine::Current();
  const bool none = engine.HasNone();
  const int length = none ? -1 : engine.script<TwoByteHeaderScript>().parse(header);
  engine.Record("ParseTwoByteHeader(0x%04x) = %d", header, length);
  return length;
}
