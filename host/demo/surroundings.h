#pragma once

#include <vector>

namespace host {

// The noise of a place where people talk; the same names as in the NOIZEUS corpus, in its order:
// airport, babble, car, exhibition, restaurant, station, street, train. place: 0 to 7. Mono.
std::vector<double> NoiseOf(int place, int rate, double seconds);

}  // namespace host
