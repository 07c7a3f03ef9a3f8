#pragma once

// Which stage's rate and channel count an echo-cancellation module is asked for or told.
enum PlatFormFsChSel { APMFSCHSEL = 0 };
