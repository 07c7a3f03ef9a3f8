#pragma once

// Runs the selected test and returns when it has returned. The one routine that the library
// exports: a host calls it, on a thread with at least 128 KiB of stack.
__attribute__((visibility("default"))) void RunTestCase();
