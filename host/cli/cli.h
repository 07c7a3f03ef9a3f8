#pragma once

namespace host {

// Does what the command line of audio_bench asks for and returns the exit code. A usage error is
// told in one line on stderr.
int RunCommandLine(int argc, char** argv);

}  // namespace host
