// How often compare calls chance worse, and how often it sees a change: compare_rates [TABLES]
// The differences have a standard deviation of 1 dB, the margin is 0.

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "support/verdict_rates.h"

namespace {

using host::Shape;

const char* NameOf(Shape shape) {
  switch (shape) {
    case Shape::kNormal:
      break;
    case Shape::kLaplace:
      return "Laplace";
    case Shape::kRareWins:
      return "exponential, rare large wins";
    case Shape::kRareLosses:
      return "exponential, rare large losses";
  }
  return "normal";
}

void Print(const host::DrawnTables& drawn) {
  const host::VerdictRates rates = host::RatesOf(drawn);
  printf("| %s | %d | %d | %.1f | %.1f %% | %.1f %% |\n", NameOf(drawn.shape), drawn.pairs,
         drawn.measures, drawn.mean, 100 * rates.measureWorse, 100 * rates.overallWorse);
  fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int tables = argc > 1 ? atoi(argv[1]) : 2000;
  if (tables < 1) return 2;
  printf(
      "| differences | pairs | measures | mean, dB | a measure is worse | the whole is worse |\n");
  printf("|---|---|---|---|---|---|\n");
  constexpr int kPairs[] = {8, 9, 10, 12, 15, 20, 30, 100};
  for (const Shape shape :
       {Shape::kNormal, Shape::kLaplace, Shape::kRareWins, Shape::kRareLosses}) {
    for (const int pairs : kPairs) Print({.shape = shape, .tables = tables, .pairs = pairs});
  }
  for (const int pairs : kPairs) Print({.tables = tables, .measures = 20, .pairs = pairs});
  for (const int measures : {1, 20}) {
    Print({.tables = tables, .measures = measures, .pairs = 30, .mean = -0.5});
  }
  return 0;
}
