#pragma once

#include <string>
#include <string_view>

#include "process/limits.h"

namespace host {

// One of the host's own standard streams, written without ever waiting for its reader: what the
// reader does not take yet is kept here.
class Outlet {
 public:
  // `descriptor` stays open for as long as this object lives.
  explicit Outlet(int descriptor);
  ~Outlet();
  Outlet(const Outlet&) = delete;
  Outlet& operator=(const Outlet&) = delete;

  // Queues the text and sends what the reader takes at once.
  void Add(std::string_view text);

  // Sends what the reader takes now.
  void Send();

  // Returns how many bytes the reader has not taken yet.
  size_t waiting() const { return m_text.size(); }

  // This descriptor becomes writable when the reader takes more.
  int descriptor() const { return m_descriptor; }

  // Returns the errno of the write that failed; 0 for none. From then on all text is dropped.
  int error() const { return m_error; }

 private:
  long Write(std::string_view text) const;

  int m_descriptor;
  bool m_ownDescriptor = false;
  bool m_socket = false;
  int m_error = 0;
  std::string m_text;  // Not yet sent.
};

// How many seconds a reader has to take what is printed, also when the limits are reached.
inline constexpr double kPatience = 2;

// Writes the text and waits for its reader for as long as the limits allow, and for kPatience in
// any case. False and errno when it cannot be written, EAGAIN when it was not taken in that time.
bool WriteWithin(Limits& limits, int descriptor, std::string_view text);

}  // namespace host
