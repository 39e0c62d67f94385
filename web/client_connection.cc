#include "web/client_connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace refgrove::web {
namespace {

constexpr auto kLingerTime = std::chrono::seconds(1);

// The address and port of a socket address, as text.
void address_text(const sockaddr_storage& address, std::string& ip, int& port) {
  char text[INET6_ADDRSTRLEN] = "";
  if (address.ss_family == AF_INET) {
    const auto& a = reinterpret_cast<const sockaddr_in&>(address);
    inet_ntop(AF_INET, &a.sin_addr, text, sizeof text);
    port = ntohs(a.sin_port);
  } else if (address.ss_family == AF_INET6) {
    const auto& a = reinterpret_cast<const sockaddr_in6&>(address);
    inet_ntop(AF_INET6, &a.sin6_addr, text, sizeof text);
    port = ntohs(a.sin6_port);
  }
  ip = text;
}

}  // namespace

ClientConnection::ClientConnection(const ConnectionLimits& limits) : limits_(limits) {}

bool ClientConnection::next_request() {
  if (begin_ == end_) {
    const ssize_t n = receive(buffer_, sizeof buffer_, Clock::now() + limits_.idle_timeout);
    if (n <= 0) return false;
    begin_ = 0;
    end_ = static_cast<std::size_t>(n);
  }
  read_deadline_ = Clock::now() + limits_.transfer_timeout;
  answering_ = false;
  request_bytes_ = 0;
  return true;
}

ssize_t ClientConnection::read(char* ptr, size_t size) {
  if (cut_ != Cut::kNone) return -1;
  if (request_bytes_ == limits_.max_header_bytes) {
    cut_ = Cut::kTooLarge;
    return -1;
  }
  if (begin_ == end_) {
    const ssize_t n = receive(buffer_, sizeof buffer_, read_deadline_);
    if (n < 0 && Clock::now() >= read_deadline_) cut_ = Cut::kTooSlow;
    if (n <= 0) return n;
    begin_ = 0;
    end_ = static_cast<std::size_t>(n);
  }
  size = std::min({size, end_ - begin_, limits_.max_header_bytes - request_bytes_});
  std::memcpy(ptr, buffer_ + begin_, size);
  begin_ += size;
  request_bytes_ += size;
  return static_cast<ssize_t>(size);
}

ssize_t ClientConnection::write(const char* ptr, size_t size) {
  if (cut_ != Cut::kNone) return -1;
  if (!answering_) {
    answering_ = true;
    write_deadline_ = Clock::now() + limits_.transfer_timeout;
  }
  return send_all(ptr, size, write_deadline_) ? static_cast<ssize_t>(size) : -1;
}

bool ClientConnection::send_all(const char* data, std::size_t size, Clock::time_point deadline) {
  while (size > 0) {
    const ssize_t n = send(data, size, deadline);
    if (n < 0) return false;
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

void ClientConnection::refuse(std::string_view answer) {
  const Clock::time_point deadline = Clock::now() + kLingerTime;
  if (!send_all(answer.data(), answer.size(), deadline)) return;
  close_sending();
  while (receive(buffer_, sizeof buffer_, deadline) > 0) {
  }
}

SocketConnection::SocketConnection(int fd, int stop_fd, const ConnectionLimits& limits)
    : ClientConnection(limits), fd_(fd), stop_fd_(stop_fd) {}

SocketConnection::~SocketConnection() { ::close(fd_); }

bool SocketConnection::wait_for(short events, Clock::time_point deadline) const {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return false;
    pollfd fds[] = {{fd_, events, 0}, {stop_fd_, POLLIN, 0}};
    const int ready = ::poll(fds, 2, static_cast<int>(std::min<long long>(left, 60'000)));
    if (ready < 0 && errno != EINTR) return false;
    if (fds[1].revents != 0) return false;
    if (fds[0].revents != 0) return true;
  }
}

ssize_t SocketConnection::receive(char* buffer, std::size_t size, Clock::time_point deadline) {
  for (;;) {
    const ssize_t n = ::recv(fd_, buffer, size, MSG_DONTWAIT);
    if (n >= 0) return n;
    if (errno == EINTR) continue;
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait_for(POLLIN, deadline)) return -1;
  }
}

ssize_t SocketConnection::send(const char* data, std::size_t size, Clock::time_point deadline) {
  for (;;) {
    const ssize_t n = ::send(fd_, data, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (n >= 0) return n;
    if (errno == EINTR) continue;
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || !wait_for(POLLOUT, deadline)) return -1;
  }
}

void SocketConnection::close_sending() { ::shutdown(fd_, SHUT_WR); }

void SocketConnection::get_remote_ip_and_port(std::string& ip, int& port) const {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  if (getpeername(fd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) address_text(address, ip, port);
}

void SocketConnection::get_local_ip_and_port(std::string& ip, int& port) const {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  if (getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) == 0) address_text(address, ip, port);
}

MemoryConnection::MemoryConnection(std::string_view input, std::string& output, const ConnectionLimits& limits)
    : ClientConnection(limits), input_(input), output_(output) {}

ssize_t MemoryConnection::receive(char* buffer, std::size_t size, Clock::time_point) {
  size = std::min(size, input_.size());
  if (size == 0) return 0;
  std::memcpy(buffer, input_.data(), size);
  input_.remove_prefix(size);
  return static_cast<ssize_t>(size);
}

ssize_t MemoryConnection::send(const char* data, std::size_t size, Clock::time_point) {
  output_.append(data, size);
  return static_cast<ssize_t>(size);
}

void MemoryConnection::get_remote_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = 40000;
}

void MemoryConnection::get_local_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = 8080;
}

}  // namespace refgrove::web
