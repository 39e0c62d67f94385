// ClientConnection: one client's connection as the HTTP library reads and
// writes it, under the limits that keep slow and greedy clients from holding
// the server.
//
// The library reads a request byte by byte and waits as long as each read
// takes, so on its own a client that sends one byte a second, or never reads
// its answer, keeps a thread for as long as it likes. Here every request has
// a deadline: its line and header fields must have arrived within
// `transfer_timeout` of its first byte, and its answer must have been taken
// within `transfer_timeout` of the first byte written; and a request may
// read at most `max_header_bytes` (the explorer's requests have no body, so
// that is its line and header fields). A request that breaks a limit while
// it arrives is "cut": reads and writes fail from then on, so that the
// library answers nothing, and the server sends its own refusal with
// refuse(). An answer that is not taken in time ends the connection.
//
// SocketConnection serves a TCP socket; MemoryConnection serves bytes held in
// memory, so that the request side can be run in-process (fuzzing).
#ifndef REFGROVE_WEB_CLIENT_CONNECTION_H_
#define REFGROVE_WEB_CLIENT_CONNECTION_H_

#include <httplib.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace refgrove::web {

struct ConnectionLimits {
  // How long a connection may stay silent between requests.
  std::chrono::milliseconds idle_timeout{5000};
  // How long a request may take to arrive, and its answer to be taken.
  std::chrono::milliseconds transfer_timeout{10000};
  // The most a request may send: its line and header fields.
  std::size_t max_header_bytes = 16 * 1024;
};

class ClientConnection : public httplib::Stream {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Cut { kNone, kTooSlow, kTooLarge };

  explicit ClientConnection(const ConnectionLimits& limits);

  // Waits up to idle_timeout for the first byte of the next request and
  // starts its deadline and byte count. False when none comes: the client
  // closed, went silent or the server is stopping.
  bool next_request();

  // Which limit, if any, the current request broke.
  Cut cut() const { return cut_; }

  // Sends `answer` (a whole HTTP response) and ends the connection without
  // losing it: the sending side is closed first and what the client still
  // sends is read and dropped for up to a second, so that the client is not
  // reset before it has read the answer.
  void refuse(std::string_view answer);

  // httplib::Stream. Reads and writes wait until the request's deadline;
  // both fail once the request is cut.
  bool is_readable() const override { return cut_ == Cut::kNone; }
  bool is_writable() const override { return cut_ == Cut::kNone; }
  ssize_t read(char* ptr, size_t size) override;
  ssize_t write(const char* ptr, size_t size) override;

 protected:
  // Up to `size` bytes received by `deadline`: their count, 0 at the end of
  // the stream, -1 on an error, at the deadline or when the server stops.
  virtual ssize_t receive(char* buffer, std::size_t size, Clock::time_point deadline) = 0;
  // Some of `size` bytes sent by `deadline`: their count, or -1 as above.
  virtual ssize_t send(const char* data, std::size_t size, Clock::time_point deadline) = 0;
  // Tells the client that nothing more will be sent.
  virtual void close_sending() = 0;

 private:
  bool send_all(const char* data, std::size_t size, Clock::time_point deadline);

  const ConnectionLimits limits_;
  char buffer_[4096];
  std::size_t begin_ = 0, end_ = 0;  // the received bytes not yet read
  Clock::time_point read_deadline_, write_deadline_;
  bool answering_ = false;  // the current request's answer has begun
  std::size_t request_bytes_ = 0;
  Cut cut_ = Cut::kNone;
};

class SocketConnection final : public ClientConnection {
 public:
  // Serves, and closes when done, the connected socket `fd`. Waits end early
  // once `stop_fd` is readable (the server is stopping).
  SocketConnection(int fd, int stop_fd, const ConnectionLimits& limits);
  ~SocketConnection() override;
  SocketConnection(const SocketConnection&) = delete;
  SocketConnection& operator=(const SocketConnection&) = delete;

  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  int socket() const override { return fd_; }

 protected:
  ssize_t receive(char* buffer, std::size_t size, Clock::time_point deadline) override;
  ssize_t send(const char* data, std::size_t size, Clock::time_point deadline) override;
  void close_sending() override;

 private:
  // Whether `fd_` is ready for `events` before `deadline` and the stop.
  bool wait_for(short events, Clock::time_point deadline) const;

  const int fd_, stop_fd_;
};

class MemoryConnection final : public ClientConnection {
 public:
  // A client on 127.0.0.1 that sends `input` and then closes; what the server
  // answers is appended to `output`.
  MemoryConnection(std::string_view input, std::string& output, const ConnectionLimits& limits);

  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  int socket() const override { return -1; }

 protected:
  ssize_t receive(char* buffer, std::size_t size, Clock::time_point deadline) override;
  ssize_t send(const char* data, std::size_t size, Clock::time_point deadline) override;
  void close_sending() override {}

 private:
  std::string_view input_;
  std::string& output_;
};

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_CLIENT_CONNECTION_H_
