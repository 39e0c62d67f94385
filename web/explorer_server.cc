#include "web/explorer_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "core/data_set.h"
#include "core/json_fields.h"
#include "web/api_params.h"
#include "web/author_impact_api.h"
#include "web/cluster_api.h"
#include "web/connection_threads.h"
#include "web/network_api.h"
#include "web/overview_api.h"
#include "web/page_files.h"
#include "web/paper_api.h"
#include "web/search_api.h"

namespace refgrove::web {
namespace {

// Threads beyond max_connections, to answer the connections past it.
constexpr std::size_t kSpareThreads = 64;
constexpr auto kThreadIdleTime = std::chrono::seconds(10);
constexpr std::size_t kRequestsPerConnection = 10000;

std::string error_body(const std::string& message) {
  return Json{{field::error, message}}.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void send_json(httplib::Response& res, int status, const Json& body) {
  res.status = status;
  res.set_content(body.dump(-1, ' ', false, Json::error_handler_t::replace), "application/json");
}

void send_error(httplib::Response& res, int status, const std::string& message) {
  res.status = status;
  res.set_content(error_body(message), "application/json");
}

// A whole response with an error, for the connection to send on its own.
std::string error_answer(int status, const char* reason, const std::string& message) {
  const std::string body = error_body(message);
  return "HTTP/1.1 " + std::to_string(status) + " " + reason +
         "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\nConnection: close\r\nX-Content-Type-Options: nosniff\r\n\r\n" + body;
}

// A duration for people: "10 s", "1.5 s".
std::string seconds_text(std::chrono::milliseconds duration) {
  std::ostringstream text;
  text << static_cast<double>(duration.count()) / 1000 << " s";
  return text.str();
}

// The message of an error that the HTTP library answers by itself.
std::string library_error(int status) {
  switch (status) {
    case 400:
      return "the request is malformed";
    case 404:
      return "not found";
    case 414:
      return "the request line is too long";
    default:
      return "the request cannot be answered (HTTP status " + std::to_string(status) + ")";
  }
}

// Whether the connection may carry another request after `req`: one that
// announces a body (not read: only GET and HEAD are answered) ends it.
bool allows_next_request(const httplib::Request& req) {
  const std::string length = req.get_header_value("Content-Length");
  return (req.method == "GET" || req.method == "HEAD") && (length.empty() || length == "0") &&
         !req.has_header("Transfer-Encoding");
}

using Answer = std::function<Json(const RefgroveData&, const httplib::Request&)>;

// An API route's handler: the answer computed on the slot's current set, or
// the ApiError it throws. The layers below report a bad argument that the
// parameters' checks let through as an invalid_argument: a 400 too.
httplib::Server::Handler api(const DataSetSlot& slot, Answer answer) {
  return [&slot, answer = std::move(answer)](const httplib::Request& req, httplib::Response& res) {
    const DataSetPtr& set = slot.current();
    if (set == nullptr) return send_error(res, 503, "no data set is loaded");
    try {
      send_json(res, 200, answer(*set, req));
    } catch (const ApiError& e) {
      send_error(res, e.status(), e.what());
    } catch (const std::invalid_argument& e) {
      send_error(res, 400, e.what());
    }
  };
}

// The id in the route's first group: a non-negative int32.
int path_id(const httplib::Request& req, const char* name) { return parse_int(req.matches[1].str(), name, 0, INT_MAX); }

// The query parameter `name`, or `fallback` when the request has none.
std::string param(const httplib::Request& req, const char* name, const char* fallback) {
  return req.has_param(name) ? req.get_param_value(name) : fallback;
}

std::string required_param(const httplib::Request& req, const char* name) {
  if (!req.has_param(name)) throw ApiError(400, std::string(name) + " is missing");
  return req.get_param_value(name);
}

int limit_param(const httplib::Request& req, const char* fallback) {
  return parse_int(param(req, "limit", fallback), "limit", 1, kMaxLimit);
}

Json search_answer(const RefgroveData& d, const httplib::Request& req) {
  constexpr SearchMode kModes[] = {SearchMode::kAnd, SearchMode::kOr};
  const SearchMode mode = kModes[parse_choice(param(req, "mode", "and"), "mode", {"and", "or"})];
  const bool exact = parse_choice(param(req, "exact", "0"), "exact", {"0", "1"}) == 1;
  return search_json(d, required_param(req, "q"),
                     SearchRequest{mode, exact, static_cast<std::size_t>(limit_param(req, "20"))});
}

Json neighbourhood_answer(const RefgroveData& d, const httplib::Request& req) {
  NeighbourhoodOptions options;
  options.hops = parse_int(param(req, "hops", "1"), "hops", 1, 3);
  constexpr Direction kDirections[] = {Direction::out, Direction::in, Direction::both};
  options.direction = kDirections[parse_choice(param(req, "direction", "both"), "direction", {"out", "in", "both"})];
  options.limit = limit_param(req, "100");
  return neighbourhood_json(d, path_id(req, "DID"), options);
}

Json path_answer(const RefgroveData& d, const httplib::Request& req) {
  return path_json(d, parse_int(required_param(req, "from"), "from", 0, INT_MAX),
                   parse_int(required_param(req, "to"), "to", 0, INT_MAX));
}

Json rank_answer(const RefgroveData& d, const httplib::Request& req) {
  constexpr RankBy kRankings[] = {RankBy::citations, RankBy::pagerank};
  const RankBy by = kRankings[parse_choice(param(req, "by", "citations"), "by", {"citations", "pagerank"})];
  std::optional<YearRange> years;
  if (req.has_param("years")) years = parse_years(req.get_param_value("years"));
  return rank_json(d, by, limit_param(req, "20"), years);
}

}  // namespace

ExplorerServer::ExplorerServer(const DataSetSlot& slot, ExplorerOptions options)
    : slot_(slot),
      options_(std::move(options)),
      access_(access_rules("127.0.0.1", 0)),
      stop_fd_(eventfd(0, EFD_CLOEXEC)) {
  if (stop_fd_ < 0) throw std::runtime_error("cannot make an eventfd");
  server_.new_task_queue = [this] {
    return new ConnectionThreads(options_.max_connections + kSpareThreads, kThreadIdleTime);
  };
  server_.set_keep_alive_timeout(std::chrono::ceil<std::chrono::seconds>(options_.limits.idle_timeout).count());
  server_.set_keep_alive_max_count(kRequestsPerConnection);  // as the Keep-Alive header tells clients
  server_.set_default_headers(
      {{"X-Content-Type-Options", "nosniff"}, {"Content-Security-Policy", "default-src 'self'; img-src 'self' data:"}});
  server_.set_exception_handler([](const httplib::Request&, httplib::Response& res, std::exception_ptr) {
    send_error(res, 500, "internal error");
  });
  server_.set_error_handler(httplib::Server::HandlerWithResponse([](const httplib::Request&, httplib::Response& res) {
    if (!res.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
    send_error(res, res.status, library_error(res.status));
    return httplib::Server::HandlerResponse::Handled;
  }));
  server_.set_pre_routing_handler([this](const httplib::Request& req, httplib::Response& res) {
    return refused(req, res) ? httplib::Server::HandlerResponse::Handled : httplib::Server::HandlerResponse::Unhandled;
  });
  add_api_routes();
  add_page_routes();
}

ExplorerServer::~ExplorerServer() { ::close(stop_fd_); }

bool ExplorerServer::refused(const httplib::Request& req, httplib::Response& res) const {
  if (req.get_header_value_count("Host") != 1) {
    send_error(res, 400, "the request must have one Host header");
    return true;
  }
  const std::string host = req.get_header_value("Host");
  if (!access_->host_allowed(host)) {
    send_error(
        res, 403,
        "this server does not answer for the host \"" + host + "\" (refgrove serve --allow-host NAME adds a name)");
    return true;
  }
  if (req.method != "GET" && req.method != "HEAD") {
    res.set_header("Allow", "GET, HEAD");
    res.set_header("Connection", "close");  // its body, if any, is not read
    send_error(res, 405, "only GET and HEAD requests are answered");
    return true;
  }
  switch (access_->token_from(req.get_header_value("Authorization"), req.get_header_value("Cookie"),
                              req.get_param_value("token"))) {
    case AccessRules::TokenFrom::kMissing:
      res.set_header("WWW-Authenticate", "Bearer");
      send_error(res, 401,
                 "this server needs its access token: open the address with ?token= that refgrove serve printed, "
                 "or send the header Authorization: Bearer TOKEN");
      return true;
    case AccessRules::TokenFrom::kQuery:
      // The browser keeps the token from now on; the page's address loses it.
      res.set_header("Set-Cookie", access_->token_cookie());
      if (req.path == "/" || req.path == "/index.html") {
        res.set_redirect("/", 303);
        return true;
      }
      return false;
    default:
      return false;
  }
}

void ExplorerServer::add_api_routes() {
  server_.Get("/api/stats", api(slot_, [](const RefgroveData& d, const httplib::Request&) { return stats_json(d); }));
  server_.Get("/api/paper/([^/]*)", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return paper_json(d, path_id(req, "DID"));
              }));
  server_.Get("/api/author/([^/]*)", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return author_json(d, path_id(req, "author id"));
              }));
  server_.Get("/api/search", api(slot_, search_answer));
  server_.Get("/api/neighbourhood/([^/]*)", api(slot_, neighbourhood_answer));
  server_.Get("/api/path", api(slot_, path_answer));
  server_.Get("/api/rank", api(slot_, rank_answer));
  server_.Get("/api/overview", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return overview_json(d, limit_param(req, "10"));
              }));
  server_.Get("/api/clusters", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return clusters_json(d, limit_param(req, "50"));
              }));
  server_.Get("/api/cluster/([^/]*)", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return cluster_json(d, path_id(req, "cluster id"), limit_param(req, "200"));
              }));
  server_.Get("/api/author/([^/]*)/impact", api(slot_, [](const RefgroveData& d, const httplib::Request& req) {
                return author_impact_json(d, path_id(req, "author id"));
              }));
  server_.Get("/api/.*",
              [](const httplib::Request&, httplib::Response& res) { send_error(res, 404, "no such API endpoint"); });
}

void ExplorerServer::add_page_routes() {
  server_.Get(".*", [](const httplib::Request& req, httplib::Response& res) {
    const std::string& path = req.path == "/" ? std::string("/index.html") : req.path;
    for (const PageFile& file : page_files()) {
      if (file.path != path) continue;
      res.set_content(file.content.data(), file.content.size(), std::string(file.content_type).c_str());
      return;
    }
    res.status = 404;
    res.set_content("Not found\n", "text/plain");
  });
}

void ExplorerServer::Server::raise_backlog() { ::listen(svr_sock_, SOMAXCONN); }

bool ExplorerServer::Server::process_and_close_socket(int sock) {
  const int on = 1;  // answers are single small writes: no waiting for ACKs
  setsockopt(sock, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  SocketConnection connection(sock, owner_.stop_fd_, owner_.options_.limits);
  if (owner_.connections_.fetch_add(1) < owner_.options_.max_connections) {
    serve_connection(connection);
  } else {
    connection.refuse(
        error_answer(503, "Service Unavailable", "the server has too many open connections; try again later"));
  }
  owner_.connections_.fetch_sub(1);
  return true;
}

void ExplorerServer::Server::serve_connection(ClientConnection& connection) {
  const ConnectionLimits& limits = owner_.options_.limits;
  for (std::size_t served = 1; connection.next_request(); ++served) {
    bool closed = false, next_allowed = false;
    const bool last = served == kRequestsPerConnection;
    const bool answered = process_request(connection, last, closed,
                                          [&](httplib::Request& req) { next_allowed = allows_next_request(req); });
    switch (connection.cut()) {
      case ClientConnection::Cut::kTooSlow:
        return connection.refuse(error_answer(
            408, "Request Timeout", "the request did not arrive within " + seconds_text(limits.transfer_timeout)));
      case ClientConnection::Cut::kTooLarge:
        return connection.refuse(error_answer(431, "Request Header Fields Too Large",
                                              "the request line and header fields are longer than " +
                                                  std::to_string(limits.max_header_bytes) + " bytes"));
      case ClientConnection::Cut::kNone:
        break;
    }
    if (!answered || closed || !next_allowed || last) return;
  }
}

int ExplorerServer::bind(const std::string& host, int port) {
  // A client that goes away mid-response must not end the process.
  std::signal(SIGPIPE, SIG_IGN);
  const int bound = port == 0 ? server_.bind_to_any_port(host) : server_.bind_to_port(host, port) ? port : -1;
  if (bound < 0) return bound;
  server_.raise_backlog();
  access_ = access_rules(host, bound);
  return bound;
}

std::unique_ptr<AccessRules> ExplorerServer::access_rules(const std::string& host, int port) const {
  auto rules = std::make_unique<AccessRules>(host, port, options_.token);
  for (const std::string& name : options_.allowed_hosts) rules->allow_host(name);
  return rules;
}

void ExplorerServer::run() { server_.listen_after_bind(); }

void ExplorerServer::stop() {
  const std::uint64_t one = 1;
  (void)!::write(stop_fd_, &one, sizeof one);
  server_.stop();
}

std::string ExplorerServer::answer(std::string_view requests) {
  std::string output;
  MemoryConnection connection(requests, output, options_.limits);
  server_.serve_connection(connection);
  return output;
}

}  // namespace refgrove::web
