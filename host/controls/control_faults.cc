#include "controls/control_faults.h"

#include "engines/engine.h"

namespace host {

namespace {

constexpr ControlFault kFaults[] = {
    {"clean", "a second run of the clean engine", "", true},
    {kDesktopEngine, "the clean engine by its name", "", true},
    {"mute", "all samples are zero", kThrough},
    {"late_by_1", "late by one sample", kThrough},
    {"late_by_half", "late by half a sample", kThrough},
    {"polarity", "the other sign", kThrough},
    {"noise", "white noise of one step of 16 bits", kThrough},
    {"gain", "louder by 0.1 dB", kThrough},
    {"swapped", "left and right exchanged", kThrough},
    {"holes", "one sample in 40 is zero", kThrough},
    {"dropout", "5 ms around the loudest sample are missing", kThrough},
    {"clipped", "four times as loud and clipped", kThrough},
    {"low_pass", "nothing above 7 kHz", kThrough},
    {"faster", "faster by 0.1 %", kThrough},
    {"no_suppression", "no noise is suppressed", kDenoised},
    {"half_cancelled", "half the depth of the canceller", kCalled},
    {"half_bit_rate", "half the bit rate of the codec", kCoded},
};

}  // namespace

std::span<const ControlFault> ControlFaults() { return kFaults; }

}  // namespace host
