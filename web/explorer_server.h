// ExplorerServer: the explorer's HTTP server. It answers the JSON API under
// /api/ from the data set that a DataSetSlot holds, and serves the page's
// embedded files; nothing else (it reads no file of its own at run time).
//
// Requests run in parallel, one thread per open connection (see
// connection_threads.h); each reads the slot's current set, so a replace()
// while requests run serves the new set to the requests that follow and
// frees the old one only once no request reads it.
#ifndef REFGROVE_WEB_EXPLORER_SERVER_H_
#define REFGROVE_WEB_EXPLORER_SERVER_H_

#include <httplib.h>

#include <string>

#include "core/data_set_slot.h"

namespace refgrove::web {

class ExplorerServer {
 public:
  explicit ExplorerServer(const DataSetSlot& slot);

  // Binds `host`:`port` (port 0: a free port of the system's choice) and
  // returns the port, or -1 when that address cannot be bound.
  int bind(const std::string& host, int port);
  // Serves until stop(), from any thread; returns at once when bind() has not
  // succeeded.
  void run();
  void stop();

 private:
  // httplib::Server with its listening socket's backlog raised: the
  // library's own (5) drops connections that arrive in a burst.
  class Server : public httplib::Server {
   public:
    void raise_backlog();
  };

  void add_api_routes();
  void add_page_routes();

  const DataSetSlot& slot_;
  Server server_;
};

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_EXPLORER_SERVER_H_
