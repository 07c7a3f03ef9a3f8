#pragma once

#include <cstdint>
#include <string>

namespace host {

// Serves one page on this machine alone, at an address that nobody can guess.
class PageServer {
 public:
  // Throws UsageError when there is no port to be had.
  explicit PageServer(std::string page);
  ~PageServer();
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  // Prints the address, and answers until a request to end arrives. Returns the exit code.
  int Run();

 private:
  void Answer(int connection) const;
  std::string AnswerTo(const std::string& request) const;

  std::string m_page;
  std::string m_token;
  int m_socket;
  uint16_t m_port = 0;
};

}  // namespace host
