#include "web/access_rules.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <stdexcept>
#include <system_error>

namespace refgrove::web {
namespace {

std::string lower(std::string_view text) {
  std::string lowered(text);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                 [](unsigned char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lowered;
}

// `name` without the brackets of an IPv6 address.
std::string_view unbracketed(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') return name.substr(1, name.size() - 2);
  return name;
}

// An address in its one usual spelling ("::0:1" and "::1" are both "::1"),
// a name in lower case.
std::string normalized(std::string_view name) {
  const std::string text(unbracketed(name));
  unsigned char bytes[sizeof(in6_addr)];
  char canonical[INET6_ADDRSTRLEN];
  for (const int family : {AF_INET, AF_INET6}) {
    if (inet_pton(family, text.c_str(), bytes) == 1 && inet_ntop(family, bytes, canonical, sizeof canonical)) {
      return canonical;
    }
  }
  return lower(text);
}

bool is_wildcard(std::string_view host) { return host.empty() || host == "0.0.0.0" || host == "::"; }

// The addresses of the machine's interfaces and its host name.
std::set<std::string> machine_names() {
  std::set<std::string> names;
  ifaddrs* interfaces = nullptr;
  if (getifaddrs(&interfaces) == 0) {
    for (const ifaddrs* i = interfaces; i != nullptr; i = i->ifa_next) {
      if (i->ifa_addr == nullptr) continue;
      char text[INET6_ADDRSTRLEN];
      const int family = i->ifa_addr->sa_family;
      const void* address = family == AF_INET
                                ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in*>(i->ifa_addr)->sin_addr)
                            : family == AF_INET6 ? &reinterpret_cast<const sockaddr_in6*>(i->ifa_addr)->sin6_addr
                                                 : nullptr;
      if (address != nullptr && inet_ntop(family, address, text, sizeof text)) names.insert(text);
    }
    freeifaddrs(interfaces);
  }
  char host_name[HOST_NAME_MAX + 1] = "";
  if (gethostname(host_name, sizeof host_name - 1) == 0 && host_name[0] != '\0') names.insert(lower(host_name));
  return names;
}

// Splits a Host header's value into its name (an IPv6 address without its
// brackets) and its port's text (empty when it has none); false when it is
// not of that form.
bool split_host(std::string_view host, std::string_view& name, std::string_view& port) {
  std::size_t name_end = 0;
  if (host.starts_with('[')) {
    name_end = host.find(']');
    if (name_end == std::string_view::npos) return false;
    name = host.substr(1, name_end - 1);
    ++name_end;
  } else {
    name_end = std::min(host.find(':'), host.size());
    name = host.substr(0, name_end);
  }
  const std::string_view rest = host.substr(name_end);
  if (!rest.empty() && rest.front() != ':') return false;
  port = rest.empty() ? rest : rest.substr(1);
  return !name.empty() && port.find(':') == std::string_view::npos;
}

bool starts_with_ignoring_case(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && lower(text.substr(0, start.size())) == start;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

}  // namespace

bool is_loopback(std::string_view host) {
  const std::string text(unbracketed(host));
  in_addr v4;
  in6_addr v6;
  if (inet_pton(AF_INET, text.c_str(), &v4) == 1) return (ntohl(v4.s_addr) >> 24) == 127;
  if (inet_pton(AF_INET6, text.c_str(), &v6) == 1) {
    return IN6_IS_ADDR_LOOPBACK(&v6) || (IN6_IS_ADDR_V4MAPPED(&v6) && v6.s6_addr[12] == 127);
  }
  return lower(text) == "localhost";
}

std::string make_token() {
  unsigned char bytes[24];
  for (std::size_t got = 0; got < sizeof bytes;) {
    const ssize_t n = getrandom(bytes + got, sizeof bytes - got, 0);
    if (n < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "getrandom");
    if (n > 0) got += static_cast<std::size_t>(n);
  }
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string token;
  for (const unsigned char b : bytes) token += {kDigits[b >> 4], kDigits[b & 15]};
  return token;
}

AccessRules::AccessRules(std::string_view listen_host, int port, std::string token)
    : port_(port), token_(std::move(token)), cookie_name_("refgrove_token_" + std::to_string(port)) {
  names_.insert(normalized(listen_host));
  if (is_wildcard(unbracketed(listen_host))) names_.merge(machine_names());
}

void AccessRules::allow_host(std::string_view name) { extra_names_.insert(normalized(name)); }

bool AccessRules::host_allowed(std::string_view host) const {
  std::string_view name, port;
  if (!split_host(host, name, port)) return false;
  const std::string n = normalized(name);
  if (extra_names_.contains(n)) return true;
  const bool port_matches = port.empty() ? port_ == 80 : port == std::to_string(port_);
  return port_matches && (names_.contains(n) || is_loopback(n));
}

bool AccessRules::token_is(std::string_view text) const {
  if (text.size() != token_.size()) return false;
  unsigned char difference = 0;  // compared in full: the time taken tells nothing
  for (std::size_t i = 0; i < text.size(); ++i) difference |= static_cast<unsigned char>(text[i] ^ token_[i]);
  return difference == 0;
}

AccessRules::TokenFrom AccessRules::token_from(std::string_view authorization, std::string_view cookies,
                                               std::string_view query_token) const {
  if (token_.empty()) return TokenFrom::kNotNeeded;
  if (starts_with_ignoring_case(authorization, "bearer ") && token_is(trimmed(authorization.substr(7)))) {
    return TokenFrom::kHeader;
  }
  while (!cookies.empty()) {
    const std::size_t end = std::min(cookies.find(';'), cookies.size());
    const std::string_view cookie = trimmed(cookies.substr(0, end));
    cookies.remove_prefix(std::min(end + 1, cookies.size()));
    const std::size_t equals = cookie.find('=');
    if (equals != std::string_view::npos && cookie.substr(0, equals) == cookie_name_ &&
        token_is(cookie.substr(equals + 1))) {
      return TokenFrom::kCookie;
    }
  }
  return token_is(query_token) ? TokenFrom::kQuery : TokenFrom::kMissing;
}

std::string AccessRules::token_cookie() const {
  return cookie_name_ + "=" + token_ + "; Path=/; HttpOnly; SameSite=Strict";
}

}  // namespace refgrove::web
