#include "catalogue/run_test_case.h"

#include "bench/effects/routines.h"

void RunTestCase() { TestHRTF(); }
