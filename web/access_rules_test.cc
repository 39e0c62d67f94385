// The Host check and the token, on header values.
#include "web/access_rules.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <unistd.h>

#include <climits>
#include <set>
#include <string>
#include <vector>

namespace refgrove::web {
namespace {

TEST(AccessRules, HostMustNameTheServerWithItsPort) {
  const struct {
    std::string listen;
    int port;
    std::string host;
    bool allowed;
  } cases[] = {
      {"127.0.0.1", 8080, "127.0.0.1:8080", true},
      {"127.0.0.1", 8080, "localhost:8080", true},
      {"127.0.0.1", 8080, "LocalHost:8080", true},
      {"127.0.0.1", 8080, "127.1.2.3:8080", true},  // all of 127/8 is loopback
      {"127.0.0.1", 8080, "[::1]:8080", true},
      {"127.0.0.1", 8080, "[0:0::1]:8080", true},
      {"127.0.0.1", 8080, "[::ffff:127.0.0.1]:8080", true},
      {"127.0.0.1", 8080, "127.0.0.1:8081", false},
      {"127.0.0.1", 8080, "127.0.0.1", false},  // port 80
      {"127.0.0.1", 80, "127.0.0.1", true},
      {"127.0.0.1", 80, "localhost", true},
      {"127.0.0.1", 8080, "127.0.0.1:08080", false},
      {"127.0.0.1", 8080, "127.0.0.1:8080:8080", false},
      {"127.0.0.1", 8080, "evil.example.com:8080", false},
      {"127.0.0.1", 8080, "localhost.evil.example.com:8080", false},
      {"127.0.0.1", 8080, "127.0.0.1.evil.example.com:8080", false},
      {"127.0.0.1", 8080, "localhost.:8080", false},
      {"127.0.0.1", 8080, "::1:8080", false},  // an IPv6 address needs its brackets
      {"127.0.0.1", 8080, "[::1:8080", false},
      {"127.0.0.1", 8080, "[::1]x:8080", false},
      {"127.0.0.1", 8080, "[::2]:8080", false},
      {"127.0.0.1", 8080, "10.0.0.1:8080", false},
      {"127.0.0.1", 8080, "", false},
      {"127.0.0.1", 8080, ":8080", false},
      {"127.0.0.1", 8080, "user@127.0.0.1:8080", false},
      {"192.168.7.20", 8080, "192.168.7.20:8080", true},
      {"192.168.7.20", 8080, "localhost:8080", true},
      {"192.168.7.20", 8080, "192.168.7.21:8080", false},
      {"Explorer.Lab", 8080, "explorer.lab:8080", true},
      {"explorer.lab", 8080, "EXPLORER.LAB:8080", true},
      {"explorer.lab", 8080, "explorer.lab:9090", false},
      {"::1", 8080, "[::1]:8080", true},
      {"fd00::7", 8080, "[FD00:0::7]:8080", true},
      {"0.0.0.0", 8080, "0.0.0.0:8080", true},
      {"0.0.0.0", 8080, "evil.example.com:8080", false},
  };
  for (const auto& c : cases) {
    const AccessRules rules(c.listen, c.port, "");
    EXPECT_EQ(rules.host_allowed(c.host), c.allowed) << c.listen << ":" << c.port << " gets Host: " << c.host;
  }
}

TEST(AccessRules, AllowedNamesTakeAnyPort) {
  AccessRules rules("127.0.0.1", 8080, "");
  rules.allow_host("Explorer.Example.Org");
  rules.allow_host("[fd00::7]");
  for (const char* host : {"explorer.example.org", "explorer.example.org:443", "EXPLORER.example.org:8080",
                           "[fd00:0::7]", "[fd00::7]:80"}) {
    EXPECT_TRUE(rules.host_allowed(host)) << host;
  }
  for (const char* host : {"example.org:8080", "www.explorer.example.org", "explorer.example.org:443:1", "fd00::7"}) {
    EXPECT_FALSE(rules.host_allowed(host)) << host;
  }
}

// The machine's host name and the addresses of its interfaces that are not
// loopback addresses, as a Host header names them.
std::vector<std::string> machine_hosts() {
  std::vector<std::string> hosts;
  char name[HOST_NAME_MAX + 1] = "";
  if (gethostname(name, sizeof name - 1) == 0 && name[0] != '\0') hosts.push_back(name);
  ifaddrs* interfaces = nullptr;
  if (getifaddrs(&interfaces) != 0) return hosts;
  for (const ifaddrs* i = interfaces; i != nullptr; i = i->ifa_next) {
    char text[INET6_ADDRSTRLEN];
    if (i->ifa_addr == nullptr || i->ifa_addr->sa_family != AF_INET) continue;
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(i->ifa_addr)->sin_addr, text, sizeof text);
    if (!is_loopback(text)) hosts.push_back(text);
  }
  freeifaddrs(interfaces);
  return hosts;
}

TEST(AccessRules, OnEveryInterfaceTheMachinesNamesAreItsOwn) {
  const std::vector<std::string> hosts = machine_hosts();
  ASSERT_FALSE(hosts.empty());
  for (const char* wildcard : {"0.0.0.0", "::"}) {
    const AccessRules everywhere(wildcard, 8080, "");
    for (const std::string& host : hosts) {
      EXPECT_TRUE(everywhere.host_allowed(host + ":8080")) << wildcard << " gets Host: " << host;
      EXPECT_FALSE(everywhere.host_allowed(host + ":8081")) << wildcard << " gets Host: " << host;
    }
    EXPECT_FALSE(everywhere.host_allowed("203.0.113.9:8080")) << wildcard;
  }
  const AccessRules loopback("127.0.0.1", 8080, "");
  for (const std::string& host : hosts) {
    if (host != "localhost") {
      EXPECT_FALSE(loopback.host_allowed(host + ":8080")) << host;
    }
  }
}

TEST(AccessRules, LoopbackAddressesAndNames) {
  for (const char* host :
       {"localhost", "LOCALHOST", "127.0.0.1", "127.255.0.1", "::1", "[::1]", "0::1", "::ffff:127.0.0.1"}) {
    EXPECT_TRUE(is_loopback(host)) << host;
  }
  for (const char* host : {"0.0.0.0", "::", "", "10.0.0.1", "::2", "localhost.example.com", "127.example.com",
                           "128.0.0.1", "::ffff:10.0.0.1"}) {
    EXPECT_FALSE(is_loopback(host)) << host;
  }
}

TEST(AccessRules, TheTokenComesFromTheHeaderTheCookieOrTheQuery) {
  using From = AccessRules::TokenFrom;
  const std::string token = "0123456789abcdef";
  const AccessRules rules("0.0.0.0", 8080, token);
  const struct {
    std::string authorization, cookies, query;
    From from;
  } cases[] = {
      {"", "", "", From::kMissing},
      {"Bearer " + token, "", "", From::kHeader},
      {"bearer  " + token + " ", "", "", From::kHeader},
      {"Bearer " + token + "0", "", "", From::kMissing},
      {"Bearer " + token.substr(1), "", "", From::kMissing},
      {"Basic " + token, "", "", From::kMissing},
      {token, "", "", From::kMissing},
      {"", "refgrove_token_8080=" + token, "", From::kCookie},
      {"", "theme=dark; refgrove_token_8080=" + token + "; lang=en", "", From::kCookie},
      {"", "refgrove_token_8081=" + token, "", From::kMissing},  // another server's
      {"", "refgrove_token_8080=" + token.substr(0, 8), "", From::kMissing},
      {"", "xrefgrove_token_8080=" + token, "", From::kMissing},
      {"", "refgrove_token_8080", "", From::kMissing},
      {"", ";;; =; refgrove_token_8080=", "", From::kMissing},
      {"", "", token, From::kQuery},
      {"", "", token + token, From::kMissing},
      {"", "", "", From::kMissing},
      {"Bearer wrong", "refgrove_token_8080=wrong", token, From::kQuery},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(rules.token_from(c.authorization, c.cookies, c.query), c.from)
        << "Authorization: " << c.authorization << " / Cookie: " << c.cookies << " / token=" << c.query;
  }
  const AccessRules open("0.0.0.0", 8080, "");
  EXPECT_EQ(open.token_from("", "", ""), From::kNotNeeded);
  EXPECT_EQ(rules.token_cookie(), "refgrove_token_8080=" + token + "; Path=/; HttpOnly; SameSite=Strict");
}

TEST(AccessRules, TokensAreNewEachTime) {
  std::set<std::string> tokens;
  for (int i = 0; i < 100; ++i) {
    const std::string token = make_token();
    EXPECT_EQ(token.size(), 48u);
    EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos) << token;
    tokens.insert(token);
  }
  EXPECT_EQ(tokens.size(), 100u);
}

}  // namespace
}  // namespace refgrove::web
