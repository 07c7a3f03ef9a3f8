#pragma once

namespace host {

// Does what the command line of audio_bench asks for and returns the exit code. Prints one line on
// stderr when it cannot be done.
int RunCommandLine(int argc, char** argv);

}  // namespace host
