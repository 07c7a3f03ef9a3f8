#pragma once

#include "catalogue/run_test_case.h"
#include "harness/declared.h"

// The entry; the catalogue says what it exercises.

ROUTINE(void, RunTestCase);
