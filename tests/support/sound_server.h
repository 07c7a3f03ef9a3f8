#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

// A private sound server with two sinks that nobody hears: "bench", the default one, and "mic",
// whose monitor is the default source. While this object lives the environment names this server;
// each test takes care of what it sets besides.
class SoundServer {
 public:
  SoundServer();
  ~SoundServer();  // Ends it.
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  // Whether it runs: false where pulseaudio is not installed.
  bool IsRunning() const { return m_process > 0; }

  void Kill();   // As a crash does.
  void Pause();  // It hangs,
  void GoOn();   // and goes on.

  // Runs again after Kill, at the same place. False where it does not.
  bool StartAgain();

 private:
  void Begin();
  bool Answers() const;

  std::filesystem::path m_folder;
  pid_t m_process = -1;
};
