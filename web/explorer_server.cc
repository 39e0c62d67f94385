#include "web/explorer_server.h"

#include <climits>
#include <csignal>
#include <functional>
#include <stdexcept>

#include <sys/socket.h>

#include "core/data_set.h"
#include "web/api_params.h"
#include "web/connection_threads.h"
#include "web/page_files.h"
#include "web/network_api.h"
#include "web/paper_api.h"
#include "web/search_api.h"

namespace refgrove::web {
namespace {

// Enough for every client of a local explorer and a thousand idle ones.
constexpr std::size_t kMaxThreads = 4096;
constexpr auto kThreadIdleTime = std::chrono::seconds(10);
// How long a connection may stay silent, before and within a request.
constexpr int kTimeoutSeconds = 5;
constexpr std::size_t kRequestsPerConnection = 10000;

void send_json(httplib::Response& res, int status, const Json& body) {
  res.status = status;
  res.set_content(body.dump(-1, ' ', false, Json::error_handler_t::replace), "application/json");
}

void send_error(httplib::Response& res, int status, const std::string& message) {
  send_json(res, status, Json{{"error", message}});
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

constexpr int kMaxLimit = 1000;

int limit_param(const httplib::Request& req, const char* fallback) {
  return parse_int(param(req, "limit", fallback), "limit", 1, kMaxLimit);
}

Json search_answer(const RefgroveData& d, const httplib::Request& req) {
  constexpr SearchMode kModes[] = {SearchMode::kAnd, SearchMode::kOr};
  const SearchMode mode = kModes[parse_choice(param(req, "mode", "and"), "mode", {"and", "or"})];
  return search_json(d, required_param(req, "q"), mode, limit_param(req, "20"));
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

ExplorerServer::ExplorerServer(const DataSetSlot& slot) : slot_(slot) {
  server_.new_task_queue = [] { return new ConnectionThreads(kMaxThreads, kThreadIdleTime); };
  server_.set_tcp_nodelay(true);  // answers are single small writes: no waiting for ACKs
  server_.set_keep_alive_timeout(kTimeoutSeconds);
  server_.set_read_timeout(kTimeoutSeconds);
  server_.set_write_timeout(kTimeoutSeconds);
  server_.set_keep_alive_max_count(kRequestsPerConnection);
  server_.set_payload_max_length(0);  // a GET has no body
  server_.set_default_headers({{"X-Content-Type-Options", "nosniff"},
                               {"Content-Security-Policy", "default-src 'self'; img-src 'self' data:"}});
  server_.set_exception_handler([](const httplib::Request&, httplib::Response& res, std::exception_ptr) {
    send_error(res, 500, "internal error");
  });
  add_api_routes();
  add_page_routes();
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
  server_.Get("/api/.*", [](const httplib::Request&, httplib::Response& res) {
    send_error(res, 404, "no such API endpoint");
  });
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

int ExplorerServer::bind(const std::string& host, int port) {
  // A client that goes away mid-response must not end the process.
  std::signal(SIGPIPE, SIG_IGN);
  const int bound = port == 0 ? server_.bind_to_any_port(host) : server_.bind_to_port(host, port) ? port : -1;
  if (bound >= 0) server_.raise_backlog();
  return bound;
}

void ExplorerServer::run() { server_.listen_after_bind(); }

void ExplorerServer::stop() { server_.stop(); }

}  // namespace refgrove::web
