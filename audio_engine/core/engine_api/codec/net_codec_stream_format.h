#pragma once

#include "../common/visibility.h"
#include "stream_format.h"

namespace ZUAudio {

// The network codec formats. The constructor fills in what each format fixes and leaves the rest as
// the memory was: most bit rates and the whole of iNetAACSTDFormat have no value, and nobody may
// read them. Belongs to one thread at a time.
class ENGINE_API NetCodecStreamFormat {
 public:
  NetCodecStreamFormat();

  StreamFormat iNetAACPlusFormat;
  StreamFormat iNetAACLC128KMONOFormat;
  StreamFormat iNetAAC128KFormat;
  StreamFormat iNetAAC160KFormat;
  StreamFormat iNetAAC192KFormat;
  StreamFormat iNetAACEldFormat;
  StreamFormat iNetAACEldSbrFormat;
  StreamFormat iNetAACEld32KhzMonoFromat;
  StreamFormat iNetAACEld16KhzMonoFromat;
  StreamFormat iNetAMRWBFormat;
  StreamFormat iNetSilk16KFormat;
  StreamFormat iNetSilk24KFormat;
  StreamFormat iNetSpeexMode8Format;
  StreamFormat iNetSpeexMode4Format;
  StreamFormat iNetSpeexMode2Format;
  StreamFormat iNetAAC44KMonoFormat;
  StreamFormat iNetAAC48KStereoFormat;
  StreamFormat iNetAAC48KMonoFromat;
  StreamFormat iNetAACSTDFormat;
  StreamFormat iNetOPUS16KFormat;
  StreamFormat iNetOPUS48KFormat;
  StreamFormat iNetOPUSCommonFormat;
  StreamFormat iNetOPUSCommonV2Format;
  StreamFormat iNetAAC64KMonoFormat;
  StreamFormat iNetPcmFormat;
  StreamFormat iNetAAC48KHev1Format;
  StreamFormat iNetAACUniversalFormat;
};

}  // namespace ZUAudio
