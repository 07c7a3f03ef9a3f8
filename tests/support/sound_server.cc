#include "support/sound_server.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>

namespace {

const char* const kVariables[] = {"PULSE_SERVER", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH",
                                  "PULSE_COOKIE", "HOME"};

void WriteScript(const std::filesystem::path& folder) {
  std::ofstream script(folder / "start.pa");
  script << "load-module module-native-protocol-unix auth-anonymous=1 socket="
         << (folder / "native").string() << "\n";
  for (const char* sink : {"bench", "mic"}) {
    // With rewinds the first stream would stall for two seconds.
    script << "load-module module-null-sink norewinds=1 rate=48000 channels=2 sink_name=" << sink
           << "\n";
  }
  script << "set-default-sink bench\nset-default-source mic.monitor\n";
}

[[noreturn]] void Become(const std::filesystem::path& folder) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int log = open((folder / "log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(log, STDOUT_FILENO);
  dup2(log, STDERR_FILENO);
  const std::string script = (folder / "start.pa").string();
  execlp("pulseaudio", "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
         "--disable-shm=yes", "--use-pid-file=no", "--high-priority=no", "-F", script.c_str(),
         nullptr);
  _exit(127);
}

}  // namespace

SoundServer::SoundServer() {
  std::string pattern = (std::filesystem::temp_directory_path() / "sound_server.XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return;
  m_folder = pattern;
  WriteScript(m_folder);
  for (const char* variable : kVariables) setenv(variable, m_folder.c_str(), 1);
  setenv("PULSE_SERVER", ("unix:" + (m_folder / "native").string()).c_str(), 1);
  setenv("PULSE_COOKIE", (m_folder / "cookie").c_str(), 1);
  Begin();
}

void SoundServer::Begin() {
  m_process = fork();
  if (m_process == 0) Become(m_folder);

  for (int i = 0; i < 1000 && m_process > 0 && !Answers(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (waitpid(m_process, nullptr, WNOHANG) == m_process) m_process = -1;
  }
}

SoundServer::~SoundServer() {
  Kill();
  for (const char* variable : kVariables) unsetenv(variable);
  std::error_code ignored;
  std::filesystem::remove_all(m_folder, ignored);
}

void SoundServer::Kill() {
  if (m_process <= 0) return;
  kill(m_process, SIGKILL);
  waitpid(m_process, nullptr, 0);
  m_process = -1;
}

void SoundServer::Pause() {
  if (m_process > 0) kill(m_process, SIGSTOP);
}

void SoundServer::GoOn() {
  if (m_process > 0) kill(m_process, SIGCONT);
}

bool SoundServer::StartAgain() {
  Begin();
  return IsRunning();
}

// The script was run to its end when the sinks are there; the socket comes first.
bool SoundServer::Answers() const {
  return system("pactl list short sinks 2>/dev/null | grep -q mic") == 0 &&          // NOLINT
         system("pactl get-default-source 2>/dev/null | grep -q mic.monitor") == 0;  // NOLINT
}
