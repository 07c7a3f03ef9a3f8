#pragma once

#include "catalogue/run_test_case.h"
#include "harness/declared.h"

// The entry, and the routine that belongs to no facility; the catalogue says what each exercises.

ROUTINE(void, RunTestCase);
ROUTINE(void, TestSilkMos);
