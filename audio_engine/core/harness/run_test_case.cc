#include "harness/run_test_case.h"

#include "harness/routines.h"

void RunTestCase() { TestHRTF(); }
