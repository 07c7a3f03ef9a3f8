// Prints what the statistics say of tables: a line of numbers each on standard input, RESAMPLES
// first, then pairs of a value and the number of its cluster; a line of p, low and high each on
// standard output.

#include <cstdio>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "statistics/mean_estimate.h"
#include "statistics/wilcoxon.h"

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream numbers(line);
    int resamples = 0;
    numbers >> resamples;
    std::vector<double> values;
    std::map<int, statistics::Cluster> byNumber;
    double value = 0;
    int number = 0;
    while (numbers >> value >> number) {
      values.push_back(value);
      statistics::Cluster& cluster =
          byNumber.try_emplace(number, statistics::Cluster{0, 0}).first->second;
      cluster.sum += value;
      cluster.count += 1;
    }
    std::vector<statistics::Cluster> clusters;
    for (const auto& [unused, cluster] : byNumber) clusters.push_back(cluster);
    const auto interval = statistics::MeanEstimate(clusters, false, resamples).At(0.95);
    printf("%.17g %.17g %.17g\n", statistics::WilcoxonP(values), interval ? interval->low : 0,
           interval ? interval->high : 0);
  }
  return 0;
}
