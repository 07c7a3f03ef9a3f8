#include "run/name_truths.h"

#include "demo/demo_all.h"

namespace host {

namespace {

// What the case says goes before what is known of the demo.
Truths TruthsOf(const Plan& plan) {
  Truths truths = plan.what.truths;
  if (!plan.what.demo) return truths;
  for (const FilePlace& input : plan.inputs) {
    const Truths known = DemoTruthsOf(input.name);
    truths.insert(truths.end(), known.begin(), known.end());
  }
  return truths;
}

}  // namespace

void NameTruths(const Plan& plan, RunReport& report) {
  const Truths truths = TruthsOf(plan);
  for (MeasuredFigure& figure : report.figures) {
    figure.truth = FindTruth(truths, figure.name, figure.unit);
  }
  for (Result& result : report.results) {
    result.truth = FindTruth(truths, result.name, result.unit);
  }
}

}  // namespace host
