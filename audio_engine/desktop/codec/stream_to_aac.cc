#include "engine_api/codec/stream_to_aac.h"

#include <climits>

#include "desktop/codec/parts/adts_converter.h"
#include "desktop/common/counts.h"

int TransZUStreamToAAC(const char* data, int size, unsigned char** out) {
  return desktop::ConvertToAdts(reinterpret_cast<const unsigned char*>(data), desktop::Size(size),
                                INT_MAX, out);
}
