#pragma once

namespace statistics {

// The share of the standard normal distribution below `z`.
double NormalShare(double z);

// Where this share of the standard normal distribution lies below; infinite for 0 and 1.
double NormalQuantile(double share);

}  // namespace statistics
