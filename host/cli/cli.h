#pragma once

namespace host {

// The command line: what `audio_bench` is asked for is done and its exit code returned. Whatever is
// wrong is told in one line on stderr.
int RunCommandLine(int argc, char** argv);

}  // namespace host
