#pragma once

#include "harness/catalogue/catalogue.h"

// What the selected test reads and writes, for its own row and for the row of the entry.
inline constexpr FileUse kHrtfInput = {.name = "/sdcard/ZUAudioDemo/44100_2.pcm",
                                       .encoding = Encoding::kPcm16,
                                       .rate = 44100,
                                       .channels = 2,
                                       .blockBytes = 1764};
inline constexpr FileUse kHrtfOutput = {.name = "/sdcard/ZUAudioDemo/44100_2_out_902.pcm",
                                        .encoding = Encoding::kFloat32,
                                        .rate = 44100,
                                        .channels = 2};
