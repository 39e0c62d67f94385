// `refgrove serve`: the explorer over one data directory, until the process
// is told to stop.
#ifndef REFGROVE_WEB_SERVE_H_
#define REFGROVE_WEB_SERVE_H_

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "core/data_set_slot.h"

namespace refgrove::web {

struct ServeOptions {
  std::string host = "127.0.0.1";
  int port = 8080;
  // Host names answered besides the server's own (access_rules.h).
  std::vector<std::string> allowed_hosts;
  // Listening beyond loopback, a token is needed unless this is set.
  bool no_token = false;
};

// The token a server with these options needs: a new one when it listens
// beyond loopback and no_token is not set, else none ("").
std::string access_token(const ServeOptions& options);

// Builds, ahead of the first request, what the API's answers read (the
// reverse indexes and what the layers above derive from the set), so that a
// freshly loaded set answers as fast as the one it replaces.
void prepare_for_serving(const RefgroveData& d);

// The address a browser opens: "http://HOST:PORT/", with "?token=TOKEN"
// when there is one.
std::string server_url(const std::string& host, int port, const std::string& token = "");

// Loads the data set with `load` (null: it has written why to `err`) and
// serves it at options.host:options.port, printing the URL (with the token,
// if any) to `out`, until
// SIGINT or SIGTERM; SIGHUP loads again and replaces the set while requests
// go on (a failed reload keeps the set served). Returns the exit status: 0
// after a stop, 1 when nothing could be loaded or the address not bound.
int serve(const ServeOptions& options, const std::function<DataSetPtr()>& load, std::ostream& out, std::ostream& err);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_SERVE_H_
