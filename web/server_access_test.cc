// Who the real server answers, on loopback: the Host check, the methods, the
// access token in each of its forms, and what `refgrove serve` decides about
// the token from the address it listens on.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <regex>
#include <thread>

#include "web/served_sample_test.h"

namespace refgrove::web {
namespace {

using JsonValue = nlohmann::json;

// A refusal's body: one line of JSON with its "error".
void expect_one_line_error(const std::string& answer, const std::string& what) {
  const std::string body = body_of(answer);
  EXPECT_EQ(header_of(answer, "Content-Type"), "application/json") << what;
  EXPECT_EQ(body.find('\n'), std::string::npos) << what << ": " << body;
  EXPECT_TRUE(JsonValue::accept(body) && JsonValue::parse(body).at("error").is_string()) << what << ": " << body;
}

TEST(HostCheck, OnlyTheServersOwnNamesAreAnswered) {
  ExplorerOptions options;
  options.allowed_hosts = {"explorer.test"};
  ServedSample served(options);
  const std::string port = std::to_string(served.port());
  const struct {
    std::string host;
    int status;
  } cases[] = {
      {"127.0.0.1:" + port, 200},
      {"localhost:" + port, 200},
      {"[::1]:" + port, 200},
      {"127.0.0.2:" + port, 200},
      {"explorer.test", 200},
      {"explorer.test:443", 200},
      {"evil.example.com:" + port, 403},
      {"evil.example.com", 403},
      {"localhost", 403},  // the port is not 80
      {"127.0.0.1:" + std::to_string(served.port() + 1), 403},
      {"localhost.evil.example.com:" + port, 403},
      {"127.0.0.1.nip.io:" + port, 403},
      {"", 400},  // as no Host at all
  };
  for (const auto& c : cases) {
    for (const char* path : {"/api/stats", "/", "/api/paper/101", "/api/nothing"}) {
      RawConnection connection(served.port());
      const std::string answer = connection.exchange(get_request(path, c.host));
      const int expected = c.status == 200 && std::string(path) == "/api/nothing" ? 404 : c.status;
      EXPECT_EQ(status_of(answer), expected) << "Host: " << c.host << " " << path;
      if (c.status != 200) expect_one_line_error(answer, "Host: " + c.host);
    }
  }
  const std::string host_line = "Host: 127.0.0.1:" + port + "\r\n";
  for (const std::string& request :
       {std::string("GET /api/stats HTTP/1.1\r\nConnection: close\r\n\r\n"),
        "GET /api/stats HTTP/1.1\r\n" + host_line + host_line + "Connection: close\r\n\r\n"}) {
    RawConnection connection(served.port());
    const std::string answer = connection.exchange(request);
    EXPECT_EQ(status_of(answer), 400) << request;
    expect_one_line_error(answer, request);
  }
}

TEST(HostCheck, OnlyGetAndHeadAreAnswered) {
  ServedSample served;
  for (const char* method : {"POST", "PUT", "DELETE", "PATCH", "OPTIONS"}) {
    RawConnection connection(served.port());
    // The body is announced but never sent: the answer does not wait for it.
    const std::string answer = connection.exchange(
        std::string(method) + " /api/stats HTTP/1.1\r\nHost: " + served.host() + "\r\nContent-Length: 1000000\r\n\r\n");
    EXPECT_EQ(status_of(answer), 405) << method;
    EXPECT_EQ(header_of(answer, "Allow"), "GET, HEAD") << method;
    expect_one_line_error(answer, method);
  }
  RawConnection connection(served.port());
  EXPECT_EQ(status_of(connection.exchange("HEAD /api/stats HTTP/1.1\r\nHost: " + served.host() +
                                          "\r\nConnection: close\r\n\r\n")),
            200);
}

TEST(AccessToken, EveryRequestCarriesItOneWayOrAnother) {
  const std::string token = make_token();
  ExplorerOptions options;
  options.token = token;
  ServedSample served(options);
  const std::string cookie = "Cookie: refgrove_token_" + std::to_string(served.port()) + "=" + token + "\r\n";
  const struct {
    std::string path, more;  // more header lines
    int status;
  } cases[] = {
      {"/api/stats", "", 401},
      {"/", "", 401},
      {"/explorer.js", "", 401},
      {"/api/stats", "Authorization: Bearer " + token + "\r\n", 200},
      {"/explorer.js", "Authorization: Bearer " + token + "\r\n", 200},
      {"/api/stats", "Authorization: Bearer " + token.substr(0, 47) + "\r\n", 401},
      {"/api/stats", "Authorization: Basic " + token + "\r\n", 401},
      {"/api/stats", cookie, 200},
      {"/api/paper/101", cookie, 200},
      {"/", cookie, 200},
      {"/api/stats", "Cookie: refgrove_token_1=" + token + "\r\n", 401},
      {"/api/stats", "Cookie: refgrove_token_" + std::to_string(served.port()) + "=x\r\n", 401},
      {"/api/stats?token=" + token, "", 200},
      {"/api/paper/101?token=" + token, "", 200},
      {"/api/stats?token=" + token + "x", "", 401},
      {"/?token=" + token, "", 303},
      {"/index.html?token=" + token, "", 303},
  };
  for (const auto& c : cases) {
    RawConnection connection(served.port());
    const std::string answer = connection.exchange(get_request(c.path, served.host(), c.more));
    const std::string what = c.path + " with " + c.more;
    EXPECT_EQ(status_of(answer), c.status) << what;
    if (c.status == 401) {
      expect_one_line_error(answer, what);
      EXPECT_EQ(header_of(answer, "WWW-Authenticate"), "Bearer") << what;
    }
    // Only a token from the address is put in a cookie.
    const bool from_query = c.path.find("token=" + token) != std::string::npos && c.status != 401;
    EXPECT_EQ(header_of(answer, "Set-Cookie"), from_query ? "refgrove_token_" + std::to_string(served.port()) + "=" +
                                                                token + "; Path=/; HttpOnly; SameSite=Strict"
                                                          : "")
        << what;
    if (c.status == 303) {
      EXPECT_EQ(header_of(answer, "Location"), "/") << what;
    }
  }
  // The Host check comes first: the token does not open the server to a page
  // of another site.
  RawConnection connection(served.port());
  EXPECT_EQ(status_of(connection.exchange(get_request("/api/stats?token=" + token, "evil.example.com:80"))), 403);
}

// ---- refgrove serve --------------------------------------------------------

// serve() on a thread of the test, its output in files; stopped as Ctrl-C
// would stop it.
class RunningServe {
 public:
  explicit RunningServe(const ServeOptions& options) {
    preprocess_sample(dir_.path());
    thread_ = std::thread([this, options] {
      std::ofstream out(dir_.path() + "out"), err(dir_.path() + "err");
      serve(
          options, [this] { return ServedSample::load(dir_.path()); }, out, err);
    });
    for (int i = 0; i < 500 && out().find('\n') == std::string::npos; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::smatch match;
    const std::string printed = out();
    if (std::regex_search(printed, match, std::regex(R"(http://[^ ]*:(\d+)/(\?token=([0-9a-f]+))?)"))) {
      port_ = std::stoi(match[1]);
      token_ = match[3];
    }
  }
  ~RunningServe() {
    pthread_kill(thread_.native_handle(), SIGTERM);
    thread_.join();
  }

  std::string out() const { return read_file(dir_.path() + "out"); }
  std::string err() const { return read_file(dir_.path() + "err"); }
  int port() const { return port_; }
  const std::string& token() const { return token_; }

  // The status of /api/stats asked on 127.0.0.1, with these header lines.
  int stats_status(const std::string& more = "") const {
    RawConnection connection(port_);
    return status_of(connection.exchange(get_request("/api/stats", "127.0.0.1:" + std::to_string(port_), more)));
  }

 private:
  TempDir dir_;
  std::thread thread_;
  int port_ = 0;
  std::string token_;
};

TEST(ServeToken, BeyondLoopbackEveryRequestNeedsTheTokenFromAnyAddress) {
  ServeOptions options;
  options.host = "0.0.0.0";
  options.port = 0;
  const RunningServe serve(options);
  ASSERT_NE(serve.port(), 0) << serve.out();
  ASSERT_EQ(serve.token().size(), 48u) << serve.out();
  EXPECT_EQ(serve.out().rfind("Serving on http://0.0.0.0:" + std::to_string(serve.port()) + "/?token=", 0), 0u);
  EXPECT_EQ(serve.stats_status(), 401);
  EXPECT_EQ(serve.stats_status("Authorization: Bearer " + serve.token() + "\r\n"), 200);
  EXPECT_EQ(serve.err(), "");
}

TEST(ServeToken, NoneOnLoopbackOrWhenRefused) {
  ServeOptions loopback;
  loopback.port = 0;
  ServeOptions without;
  without.host = "0.0.0.0";
  without.port = 0;
  without.no_token = true;
  for (const ServeOptions& options : {loopback, without}) {
    const RunningServe serve(options);
    ASSERT_NE(serve.port(), 0) << serve.out();
    EXPECT_EQ(serve.token(), "") << serve.out();
    EXPECT_EQ(serve.stats_status(), 200) << options.host;
    // Saying so when the data set is open to the network.
    EXPECT_EQ(serve.err().find("no access token") != std::string::npos, options.no_token) << serve.err();
  }
}

}  // namespace
}  // namespace refgrove::web
