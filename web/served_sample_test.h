// The web tests' server: the sample preprocessed and served by an
// ExplorerServer on a loopback port in a thread of the test, and clients
// for it: raw connections, for what httplib::Client would not send.
#ifndef REFGROVE_WEB_SERVED_SAMPLE_TEST_H_
#define REFGROVE_WEB_SERVED_SAMPLE_TEST_H_

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "core/data_view.h"
#include "testing/data_files.h"
#include "web/explorer_server.h"
#include "web/serve.h"

namespace refgrove::web {

// The sample, preprocessed into a directory of its own and served until
// destruction.
class ServedSample {
 public:
  explicit ServedSample(ExplorerOptions options = {}, const std::string& host = "127.0.0.1")
      : server_(slot_, std::move(options)) {
    preprocess_sample(dir_.path());
    slot_.replace(load(dir_.path()));
    port_ = server_.bind(host, 0);
    serving_ = std::thread([this] { server_.run(); });
  }
  ~ServedSample() {
    server_.stop();
    serving_.join();
  }
  ServedSample(const ServedSample&) = delete;
  ServedSample& operator=(const ServedSample&) = delete;

  static DataSetPtr load(const std::string& dir) {
    std::ostringstream log;
    DataSetPtr set = load_data_set(dir, log);
    prepare_for_serving(*set);
    return set;
  }

  DataSetSlot& slot() { return slot_; }
  const RefgroveData& data() { return *slot_.current(); }
  int port() const { return port_; }
  // The Host header that names this server.
  std::string host() const { return "127.0.0.1:" + std::to_string(port_); }
  const std::string& dir() const { return dir_.path(); }

 private:
  TempDir dir_;
  DataSetSlot slot_;
  ExplorerServer server_;
  int port_ = -1;
  std::thread serving_;
};

// The sample, served once for the whole test program (until it ends).
inline ServedSample& sample() {
  static auto* served = new ServedSample;
  return *served;
}

struct Reply {
  int status = 0;  // 0: no HTTP answer (connection closed)
  std::string body;
  nlohmann::json json() const { return nlohmann::json::parse(body); }
};

// A GET of `path` from sample()'s server.
inline Reply get(const std::string& path) {
  httplib::Client client("127.0.0.1", sample().port());
  const httplib::Result result = client.Get(path);
  if (!result) return {};
  return {result->status, result->body};
}

// A raw connection to a port of 127.0.0.1.
class RawConnection {
 public:
  explicit RawConnection(int port) : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
    const timeval wait_at_most{10, 0};  // a server that never answers fails the test, not hangs it
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wait_at_most, sizeof wait_at_most);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected_ = connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~RawConnection() { close(fd_); }
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  bool connected() const { return connected_; }
  int fd() const { return fd_; }
  // False when the server has closed the connection.
  bool send_text(const std::string& text) {
    return send(fd_, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
  }
  // Sends no more: the server sees the end of the request stream.
  void end_sending() { shutdown(fd_, SHUT_WR); }
  // What the server sends until it closes or `limit` bytes have come.
  std::string receive(std::size_t limit = 1 << 20) {
    std::string text;
    char buffer[4096];
    while (text.size() < limit) {
      const ssize_t n = recv(fd_, buffer, std::min(sizeof buffer, limit - text.size()), 0);
      if (n <= 0) break;
      text.append(buffer, static_cast<std::size_t>(n));
    }
    return text;
  }
  // One answer to a request with Connection: close.
  std::string exchange(const std::string& request) {
    send_text(request);
    return receive();
  }

 private:
  int fd_;
  bool connected_ = false;
};

// The status of a raw answer ("HTTP/1.1 403 ..."), 0 when there is none.
inline int status_of(const std::string& answer) {
  return answer.rfind("HTTP/1.1 ", 0) == 0 && answer.size() >= 12 ? std::stoi(answer.substr(9, 3)) : 0;
}

// The body of a raw answer: what follows its header.
inline std::string body_of(const std::string& answer) {
  const std::size_t end = answer.find("\r\n\r\n");
  return end == std::string::npos ? "" : answer.substr(end + 4);
}

// The value of the header field `name` in a raw answer ("" when absent).
inline std::string header_of(const std::string& answer, const std::string& name) {
  const std::string head = answer.substr(0, answer.find("\r\n\r\n"));
  const std::size_t at = head.find("\r\n" + name + ": ");
  if (at == std::string::npos) return "";
  const std::size_t begin = at + name.size() + 4;
  return head.substr(begin, head.find("\r\n", begin) - begin);
}

// A GET request with this Host header and more header lines, which end in
// "\r\n"; the server closes the connection after answering.
inline std::string get_request(const std::string& target, const std::string& host, const std::string& more = "") {
  return "GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n" + more + "\r\n";
}

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_SERVED_SAMPLE_TEST_H_
