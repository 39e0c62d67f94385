// AccessRules: which requests the explorer answers.
//
// Host check. A web page that the user visits can point a name of its own at
// 127.0.0.1 (DNS rebinding) and then read the explorer as if it were its own
// site; such a request still carries the page's name in its Host header. So
// a request is answered only when its Host names this server: the address or
// name it listens on, "localhost" or a loopback address, each with the
// server's port (or without one when that is 80); when it listens on every
// interface (0.0.0.0 or ::), also the addresses of the machine's interfaces
// and its host name. Names added with allow_host() are taken with any port,
// since a proxy in front of the server may use its own. Names compare
// without regard to case, addresses in any of their spellings.
//
// Token. A server that listens beyond loopback can be reached by other
// people; it is given an access token, which every request must carry,
// whatever address it comes from: as "Authorization: Bearer TOKEN", in the
// cookie that the server sets (HttpOnly, SameSite=Strict; its name holds the
// port, so that servers on other ports keep their own), or as the query
// parameter "token", which a browser sends once, from the address that
// `refgrove serve` prints.
#ifndef REFGROVE_WEB_ACCESS_RULES_H_
#define REFGROVE_WEB_ACCESS_RULES_H_

#include <set>
#include <string>
#include <string_view>

namespace refgrove::web {

// Whether `host` (a name or an address) is "localhost" or a loopback address.
bool is_loopback(std::string_view host);

// A new random token: 48 hexadecimal digits (192 bits from the system's
// random source).
std::string make_token();

class AccessRules {
 public:
  // For a server listening on `listen_host`:`port`; an empty `token` means
  // that none is needed.
  AccessRules(std::string_view listen_host, int port, std::string token);

  // Also answers Host headers naming `name`, with any port.
  void allow_host(std::string_view name);

  // Whether a Host header's value names this server.
  bool host_allowed(std::string_view host) const;

  enum class TokenFrom { kNotNeeded, kHeader, kCookie, kQuery, kMissing };
  // Where a request with these Authorization and Cookie headers and "token"
  // parameter (each empty when absent) carries the token; kMissing when it
  // does not carry it, or carries another.
  TokenFrom token_from(std::string_view authorization, std::string_view cookies, std::string_view query_token) const;

  // The Set-Cookie value that keeps the token in a browser.
  std::string token_cookie() const;

 private:
  bool token_is(std::string_view text) const;

  const int port_;
  const std::string token_;
  const std::string cookie_name_;
  std::set<std::string> names_;        // with the server's port
  std::set<std::string> extra_names_;  // with any port
};

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_ACCESS_RULES_H_
