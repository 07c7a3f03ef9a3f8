// How often compare calls chance worse, and how often it sees a change: compare_rates [TABLES]
// Each table has normal differences of a standard deviation of 1 dB, the margin is 0.

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "support/verdict_rates.h"

namespace {

void Print(const host::DrawnTables& drawn) {
  const host::VerdictRates rates = host::RatesOf(drawn);
  printf("| %d | %d | %.1f | %.2f %% | %.2f %% |\n", drawn.pairs, drawn.measures, drawn.mean,
         100 * rates.measureWorse, 100 * rates.overallWorse);
  fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int tables = argc > 1 ? atoi(argv[1]) : 2000;
  if (tables < 1) return 2;
  printf("| pairs | measures | mean, dB | a measure is worse | the whole is worse |\n");
  printf("|---|---|---|---|---|\n");
  for (const int pairs : {8, 10, 15, 30, 100}) {
    for (const int measures : {1, 20})
      Print({.tables = tables, .measures = measures, .pairs = pairs});
  }
  for (const int measures : {1, 20}) {
    Print({.tables = tables, .measures = measures, .pairs = 30, .mean = -0.5});
  }
  return 0;
}
