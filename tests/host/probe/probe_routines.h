#pragma once

#include "harness/declared.h"

// The routines of the probe catalogue.

ROUTINE(void, Nothing);
ROUTINE(void, Echo, const char* text, char* more, bool flag, int number);
ROUTINE(void, PrintAndLog);
ROUTINE(void, PrintPartOfALine);
ROUTINE(void, Crash);
ROUTINE(void, Abort);
ROUTINE(void, Throw);
ROUTINE(void, ExitEarly);
ROUTINE(void, Hang);  // Writes its process id to "pid" first.
ROUTINE(void, WriteNothing);
ROUTINE(void, WriteEmpty);
ROUTINE(void, WritePcm);
ROUTINE(void, WriteTooMuch);  // More than the process may write to a file.
ROUTINE(void, WriteNotFinite);
ROUTINE(void, WriteLoud);  // Up to twice full scale.
ROUTINE(void, WriteNoWave);
ROUTINE(void, LeaveOpen);
ROUTINE(void, Copy, const char* inFile, const char* outFile);
ROUTINE(void, OpenByAnyName);
ROUTINE(void, OpenOutside);
PLANNED(void, NotBuilt, const char* inFile);
HELPER(void, Helper);
