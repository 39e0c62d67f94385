// ExplorerServer: the explorer's HTTP server. It answers the JSON API under
// /api/ from the data set that a DataSetSlot holds, and serves the page's
// embedded files; nothing else (it reads no file of its own at run time).
//
// Requests run in parallel, one thread per open connection (see
// connection_threads.h); each reads the slot's current set, so a replace()
// while requests run serves the new set to the requests that follow and
// frees the old one only once no request reads it.
//
// Before a request reaches the API, its Host header must name the server
// and, when the server has a token, it must carry it (access_rules.h); only
// GET and HEAD are answered. Each connection is served under the limits of
// client_connection.h, and at most `max_connections` are served at once.
#ifndef REFGROVE_WEB_EXPLORER_SERVER_H_
#define REFGROVE_WEB_EXPLORER_SERVER_H_

#include <httplib.h>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/data_set_slot.h"
#include "web/access_rules.h"
#include "web/client_connection.h"

namespace refgrove::web {

struct ExplorerOptions {
  ConnectionLimits limits;
  // Connections past this many are answered 503 and closed.
  std::size_t max_connections = 2048;
  // Host names answered besides the server's own (AccessRules::allow_host).
  std::vector<std::string> allowed_hosts;
  // Needed on every request when not empty.
  std::string token;
};

class ExplorerServer {
 public:
  explicit ExplorerServer(const DataSetSlot& slot, ExplorerOptions options = {});
  ~ExplorerServer();

  // Binds `host`:`port` (port 0: a free port of the system's choice) and
  // returns the port, or -1 when that address cannot be bound. The Host
  // check answers the names of this address from then on.
  int bind(const std::string& host, int port);
  // Serves until stop(), from any thread; returns at once when bind() has not
  // succeeded.
  void run();
  void stop();

  // What the server answers a client that sends `requests` on one connection
  // and then closes: the responses, one after another. Runs in the calling
  // thread, without a socket. Before bind(), the Host check answers only
  // the allowed names and the port is taken to be 0.
  std::string answer(std::string_view requests);

 private:
  // httplib::Server with its listening socket's backlog raised (the
  // library's own, 5, drops connections that arrive in a burst), and its
  // connections served by serve_connection().
  class Server : public httplib::Server {
   public:
    explicit Server(ExplorerServer& owner) : owner_(owner) {}
    void raise_backlog();
    void serve_connection(ClientConnection& connection);

   private:
    bool process_and_close_socket(int sock) override;
    ExplorerServer& owner_;
  };

  void add_api_routes();
  void add_page_routes();
  std::unique_ptr<AccessRules> access_rules(const std::string& host, int port) const;
  // The pre-routing check: true when it has answered (refused) the request.
  bool refused(const httplib::Request& req, httplib::Response& res) const;

  const DataSetSlot& slot_;
  const ExplorerOptions options_;
  std::unique_ptr<AccessRules> access_;
  std::atomic<std::size_t> connections_{0};
  int stop_fd_ = -1;  // an eventfd, readable once stop() is called
  Server server_{*this};
};

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_EXPLORER_SERVER_H_
