#pragma once

#include <string>

#include "../common/visibility.h"

// Takes PCM of several formats and brings it to one. Belongs to one thread.
class ENGINE_API IPushPcmModule {
 public:
  // A new module that gives dstFs Hz and dstCh channels, owned by the caller until Destroy; never
  // null. streamCount: how many streams will be pushed.
  static IPushPcmModule* CreatePuchPcmModule(unsigned dstFs, unsigned dstCh, unsigned streamCount);

  // The head of pushed data, ahead of the samples of `count` streams one after the other. Little-
  // endian 32-bit words: version (1), count, and for each stream its rate (Hz), channels, bytes of
  // a sample, and bytes of its samples in this push. Empty when an array is null.
  static std::string MakeStreamInfo(unsigned* fs, unsigned* ch, unsigned* precision,
                                    unsigned* length, unsigned count);

  // Replaces `out` by the mix of the streams in `data`, which starts with what MakeStreamInfo made:
  // interleaved 16-bit samples in the format of the module. False, and `out` empty, for data that
  // are none or are cut short.
  virtual bool Process(const std::string& data, std::string& out) = 0;

  // Deletes the object.
  virtual void Destroy() = 0;

 protected:
  virtual ~IPushPcmModule() = default;
};
