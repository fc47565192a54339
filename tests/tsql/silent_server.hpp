// A server that takes connections and never says a word, as a stopped or frozen one does: the
// kernel completes the connection from the listening socket's backlog, so no thread is needed.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace vrdppo::tsql {

class SilentServer {
 public:
  SilentServer() : fd_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof a;
    if (fd_ < 0 || ::bind(fd_, reinterpret_cast<sockaddr*>(&a), size) != 0 ||
        ::listen(fd_, 16) != 0 || ::getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &size) != 0) {
      if (fd_ >= 0) ::close(fd_);
      throw std::runtime_error("no listening socket");
    }
    port_ = ntohs(a.sin_port);
  }
  ~SilentServer() { ::close(fd_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

  int port() const { return port_; }

 private:
  int fd_;
  int port_ = 0;
};

}  // namespace vrdppo::tsql
