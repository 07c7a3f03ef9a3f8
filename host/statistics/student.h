#pragma once

namespace statistics {

// The share of Student's t distribution below `t`, for a whole or broken number of degrees of
// freedom above 0.
double StudentShare(double t, double freedom);

// Where this share of it lies below; `share` is above 0 and below 1, `freedom` at least 7.
double StudentQuantile(double share, double freedom);

}  // namespace statistics
