// Slow and greedy clients against the real server on loopback: silent
// connections, requests trickled in or too large, answers never read, more
// connections than the server takes, and 500 clients that send one byte a
// second while others are answered.
#include <gtest/gtest.h>
#include <poll.h>

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "web/served_sample_test.h"

namespace refgrove::web {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Short limits, so that the tests see them act.
ExplorerOptions short_limits() {
  ExplorerOptions options;
  options.limits.idle_timeout = milliseconds(500);
  options.limits.transfer_timeout = milliseconds(1000);
  options.limits.max_header_bytes = 1024;
  options.max_connections = 16;
  return options;
}

ServedSample& served() {
  static auto* served = new ServedSample(short_limits());  // lives until the process ends
  return *served;
}

void expect_refusal(const std::string& answer, int status, const std::string& what) {
  EXPECT_EQ(status_of(answer), status) << what << ": " << answer.substr(0, 80);
  EXPECT_EQ(header_of(answer, "Connection"), "close") << what;
  const std::string body = body_of(answer);
  EXPECT_TRUE(nlohmann::json::accept(body) && nlohmann::json::parse(body).at("error").is_string()) << what << body;
}

// A GET of /api/stats padded with a header field to exactly `bytes` bytes.
std::string request_of_size(std::size_t bytes) {
  const std::string start = "GET /api/stats HTTP/1.1\r\nHost: " + served().host() + "\r\nConnection: close\r\n";
  const std::string pad_start = "X-Pad: ", end = "\r\n\r\n";
  return start + pad_start + std::string(bytes - start.size() - pad_start.size() - end.size(), 'p') + end;
}

TEST(SlowClients, SilentConnectionsAreClosed) {
  // Silent from the start, and silent after a first answer.
  for (const bool first_request : {false, true}) {
    RawConnection connection(served().port());
    if (first_request) {
      connection.send_text("GET /api/stats HTTP/1.1\r\nHost: " + served().host() + "\r\n\r\n");
    }
    const auto start = Clock::now();
    const std::string answer = connection.receive();
    EXPECT_EQ(status_of(answer), first_request ? 200 : 0) << answer;
    EXPECT_LT(Clock::now() - start, milliseconds(5000)) << "closed after the idle time";
  }
}

TEST(SlowClients, ARequestThatDoesNotArriveInTimeIsRefused) {
  const std::string request = "GET /api/stats HTTP/1.1\r\nHost: " + served().host() + "\r\n\r\n";
  // Trickled over 2 s, but well within the header's size.
  RawConnection connection(served().port());
  const auto start = Clock::now();
  for (const char c : request) {
    if (!connection.send_text(std::string(1, c))) break;
    std::this_thread::sleep_for(milliseconds(2000 / request.size()));
  }
  expect_refusal(connection.receive(), 408, "trickled request");
  EXPECT_LT(Clock::now() - start, milliseconds(4000));
}

TEST(SlowClients, TheHeaderHasACap) {
  for (const std::size_t bytes : {std::size_t{1024}, std::size_t{1025}, std::size_t{4096}, std::size_t{1} << 20}) {
    RawConnection connection(served().port());
    const std::string answer = connection.exchange(request_of_size(bytes));
    if (bytes <= 1024) {
      EXPECT_EQ(status_of(answer), 200) << bytes << " bytes";
    } else {
      expect_refusal(answer, 431, std::to_string(bytes) + " bytes");
    }
  }
}

TEST(SlowClients, AnswersThatAreNotTakenEndTheConnection) {
  RawConnection greedy(served().port());
  const std::string request = "GET /d3.min.js HTTP/1.1\r\nHost: " + served().host() + "\r\n\r\n";
  const int asked = 200;
  for (int i = 0; i < asked; ++i) greedy.send_text(request);
  // Nothing is read for a while: the server's writes wait, then give up.
  std::this_thread::sleep_for(milliseconds(2500));
  httplib::Client other("127.0.0.1", served().port());
  const httplib::Result answer = other.Get("/d3.min.js");
  ASSERT_TRUE(answer && answer->status == 200) << "others are answered meanwhile";
  const std::size_t one_answer = answer->body.size();
  const std::string taken = greedy.receive(std::size_t{1} << 30);
  EXPECT_LT(taken.size(), asked * one_answer) << "the connection ended before every answer was sent";
}

TEST(SlowClients, ConnectionsPastTheCapAreRefused) {
  std::vector<std::unique_ptr<RawConnection>> held;
  const std::string keep_alive = "GET /api/stats HTTP/1.1\r\nHost: " + served().host() + "\r\n\r\n";
  for (int i = 0; i < 16; ++i) {
    held.push_back(std::make_unique<RawConnection>(served().port()));
    held.back()->send_text(keep_alive);
  }
  for (auto& c : held) {
    pollfd answered{c->fd(), POLLIN, 0};
    ASSERT_EQ(poll(&answered, 1, 5000), 1) << "every held connection is being served";
  }
  RawConnection refused(served().port());
  expect_refusal(refused.exchange(get_request("/api/stats", served().host())), 503, "connection 17");
  held.pop_back();
  int status = 0;
  for (const auto start = Clock::now(); status != 200 && Clock::now() - start < milliseconds(3000);) {
    RawConnection next(served().port());
    status = status_of(next.exchange(get_request("/api/stats", served().host())));
  }
  EXPECT_EQ(status, 200) << "a closed connection frees its place";
}

TEST(SlowClients, FiveHundredTricklingConnectionsDelayNobody) {
  // Were the trickling connections to hold the server, answers would come
  // only once they are refused, after this time.
  const milliseconds refusal_time(4000);
  ExplorerOptions options;
  options.limits.transfer_timeout = refusal_time;
  ServedSample server(options);
  const std::string start = "GET /api/stats HTTP/1.1\r\nHost: " + server.host() + "\r\nX-Slow: ";
  std::vector<std::unique_ptr<RawConnection>> slow;
  for (int i = 0; i < 500; ++i) {
    slow.push_back(std::make_unique<RawConnection>(server.port()));
    ASSERT_TRUE(slow.back()->connected());
    slow.back()->send_text(start);
  }
  std::atomic<bool> done{false};
  std::atomic<int> answered{0}, failed{0};
  std::atomic<long long> slowest_ms{0};
  std::thread user([&] {
    httplib::Client client("127.0.0.1", server.port());
    while (!done) {
      const auto asked = Clock::now();
      const httplib::Result r = client.Get("/api/paper/110");
      const long long ms = std::chrono::duration_cast<milliseconds>(Clock::now() - asked).count();
      slowest_ms = std::max(slowest_ms.load(), ms);
      ++(r && r->status == 200 ? answered : failed);
    }
  });
  // One byte a second each, for longer than a request may take.
  for (int second = 0; second < 5; ++second) {
    for (auto& c : slow) c->send_text("x");
    std::this_thread::sleep_for(milliseconds(1000));
  }
  done = true;
  user.join();
  EXPECT_EQ(failed, 0);
  EXPECT_GT(answered, 10);
  EXPECT_LT(slowest_ms, refusal_time.count()) << "an answer waited on the trickling connections";
  int refused = 0;
  for (auto& c : slow) refused += status_of(c->receive()) == 408;
  EXPECT_EQ(refused, 500) << "each trickling connection is refused once its time is up";
}

}  // namespace
}  // namespace refgrove::web
