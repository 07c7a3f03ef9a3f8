#pragma once

#include "harness/declared.h"

// Engine log callback: appends the line and a newline to "sdk_log.txt" in the current directory,
// and flushes. The file is truncated by the first line of a process and stays open. Any thread.
HELPER(void, PrintSdkLog, const char* pLogStr);

// Debug log hook for a host: appends the line and a newline to "audio_engine.log" in the current
// directory, unflushed. The file is truncated by the first line of a process and stays open. One
// thread at a time.
HELPER(void, DebugLogFunction, const char* pLogStr);
