#include "report_page/page_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/exit_code.h"
#include "base/usage_error.h"
#include "process/signals.h"
#include "report/output.h"

namespace host {

namespace {

constexpr size_t kMaxRequestBytes = 16384;
constexpr timeval kPatience = {.tv_sec = 10, .tv_usec = 0};  // With one who asks.

std::string RandomToken() {
  unsigned char bytes[16];
  if (getrandom(bytes, sizeof bytes, 0) != sizeof bytes) {
    throw UsageError{std::string("no random numbers: ") + strerror(errno)};
  }
  constexpr char kDigits[] = "0123456789abcdef";
  std::string token;
  for (const unsigned char byte : bytes) {
    token += kDigits[byte >> 4U];
    token += kDigits[byte & 15U];
  }
  return token;
}

std::string Head(const std::string& status, const std::string& body) {
  return "HTTP/1.1 " + status + "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " +
         std::to_string(body.size()) +
         "\r\nCache-Control: no-store\r\nReferrer-Policy: no-referrer\r\n"
         "X-Content-Type-Options: nosniff\r\nConnection: close\r\n\r\n";
}

void SendAll(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
}

}  // namespace

PageServer::PageServer(std::string page)
    : m_page(std::move(page)),
      m_token(RandomToken()),
      m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const where = reinterpret_cast<sockaddr*>(&address);
  const bool listens = m_socket >= 0 && bind(m_socket, where, size) == 0 &&
                       listen(m_socket, 16) == 0 && getsockname(m_socket, where, &size) == 0;
  if (!listens) {
    const int error = errno;
    if (m_socket >= 0) close(m_socket);
    throw UsageError{std::string("cannot serve the page: ") + strerror(error)};
  }
  m_port = ntohs(address.sin_port);
}

PageServer::~PageServer() { close(m_socket); }

int PageServer::Run() {
  const HostSignals signals;
  const int printed = PrintResults("http://127.0.0.1:" + std::to_string(m_port) + "/" + m_token +
                                   "/\nserved to this machine until Ctrl-C\n");
  if (printed != exit_code::kPass) return printed;
  while (true) {
    pollfd waiting[] = {{m_socket, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}};
    if (poll(waiting, 2, -1) < 0 && errno != EINTR) return exit_code::kUsage;
    if (waiting[1].revents != 0 && signals.TakeInterruption() != 0) return exit_code::kPass;
    if ((waiting[0].revents & POLLIN) == 0) continue;
    const int connection = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    Answer(connection);
    close(connection);
  }
}

void PageServer::Answer(int connection) const {
  for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO}) {
    setsockopt(connection, SOL_SOCKET, option, &kPatience, sizeof kPatience);
  }
  std::string request;
  char block[4096];
  while (request.find("\r\n\r\n") == std::string::npos && request.size() < kMaxRequestBytes) {
    const ssize_t count = recv(connection, block, sizeof block, 0);
    if (count <= 0) return;
    request.append(block, static_cast<size_t>(count));
  }
  SendAll(connection, AnswerTo(request));
}

std::string PageServer::AnswerTo(const std::string& request) const {
  const std::string line = request.substr(0, request.find("\r\n"));
  const std::string target = " /" + m_token + "/ HTTP/1.";
  const bool gets = line.starts_with("GET" + target);
  if (!gets && !line.starts_with("HEAD" + target)) return Head("404 Not Found", "");
  const std::string head = Head("200 OK", m_page);
  return gets ? head + m_page : head;
}

}  // namespace host
