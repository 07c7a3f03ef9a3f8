#pragma once

#include "catalogue/files.h"

namespace harness {

// What the selected test reads and writes, for its own row and for the row of the entry.
inline const FileUse kHrtfInput = {.name = "/sdcard/ZUAudioDemo/44100_2.pcm",
                                   .container = Container::kHeaderless,
                                   .rate = 44100,
                                   .channels = 2,
                                   .blockBytes = 1764};
inline const FileUse kHrtfOutput = {.name = "/sdcard/ZUAudioDemo/44100_2_out_902.pcm",
                                    .container = Container::kHeaderless,
                                    .samples = SampleType::kFloat32,
                                    .rate = 44100,
                                    .channels = 2};

}  // namespace harness
