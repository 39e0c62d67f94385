#include "web/serve.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <iomanip>
#include <thread>

#include "core/data_set.h"
#include "network/coauthor_graph.h"
#include "network/ranking.h"
#include "web/access_rules.h"
#include "web/cluster_api.h"
#include "web/explorer_server.h"
#include "web/overview_api.h"
#include "web/search_api.h"

namespace refgrove::web {
namespace {

// A set loaded and prepared, or null when `load` failed (it has said why)
// or threw.
DataSetPtr load_prepared(const std::function<DataSetPtr()>& load, std::ostream& err) {
  try {
    DataSetPtr set = load();
    if (set != nullptr) prepare_for_serving(*set);
    return set;
  } catch (const std::exception& e) {
    err << "refgrove serve: cannot load the data directory: " << e.what() << "\n";
    return nullptr;
  }
}

// A reload runs on a thread of its own at this lower priority (nice), so
// that it takes the cores only when the requests leave them: answers keep
// their pace while a new set is made, and the reload takes longer when the
// server is busy.
constexpr int kReloadNice = 10;

DataSetPtr load_behind_requests(const std::function<DataSetPtr()>& load, std::ostream& err) {
  DataSetPtr set;
  std::thread([&] {
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kReloadNice);
    set = load_prepared(load, err);
  }).join();
  return set;
}

// Signals taken by the serving thread with sigwait() rather than by a
// handler: blocked here, and so in the server's threads, which start later.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigemptyset(&signals_);
    for (const int s : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&signals_, s);
    pthread_sigmask(SIG_BLOCK, &signals_, &old_mask_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &old_mask_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

  int wait() const {
    int signal = 0;
    while (sigwait(&signals_, &signal) != 0) {
    }
    return signal;
  }

 private:
  sigset_t signals_, old_mask_;
};

}  // namespace

void prepare_for_serving(const RefgroveData& d) {
  d.cited_by();
  d.author_docs();
  d.key_docs();
  CoauthorGraph::of(d);
  ranked(d, RankBy::pagerank, 1);  // computes every score
  prepare_search(d);
  prepare_overview(d);
  prepare_clusters(d);
}

std::string access_token(const ServeOptions& options) {
  return is_loopback(options.host) || options.no_token ? "" : make_token();
}

std::string server_url(const std::string& host, int port, const std::string& token) {
  const bool ipv6 = host.find(':') != std::string::npos;
  return "http://" + (ipv6 ? "[" + host + "]" : host) + ":" + std::to_string(port) + "/" +
         (token.empty() ? "" : "?token=" + token);
}

int serve(const ServeOptions& options, const std::function<DataSetPtr()>& load, std::ostream& out, std::ostream& err) {
  DataSetSlot slot;
  slot.replace(load_prepared(load, err));
  if (slot.current() == nullptr) return 1;
  BlockedSignals signals;
  const std::string token = access_token(options);
  ExplorerOptions explorer_options;
  explorer_options.allowed_hosts = options.allowed_hosts;
  explorer_options.token = token;
  ExplorerServer server(slot, explorer_options);
  const int port = server.bind(options.host, options.port);
  if (port < 0) {
    err << "refgrove serve: cannot listen on " << options.host << " port " << options.port << "\n";
    return 1;
  }
  std::thread serving([&server] { server.run(); });
  if (!is_loopback(options.host) && token.empty()) {
    err << "refgrove serve: no access token (--no-token): whoever reaches " << options.host << " port " << port
        << " can read the data set" << std::endl;
  }
  out << "Serving on " << server_url(options.host, port, token) << " (Ctrl-C stops; SIGHUP reloads)" << std::endl;
  while (signals.wait() == SIGHUP) {
    const auto start = std::chrono::steady_clock::now();
    if (DataSetPtr next = load_behind_requests(load, err)) {
      slot.replace(std::move(next));
      const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
      err << "refgrove serve: reloaded in " << std::fixed << std::setprecision(1) << took.count() << " s" << std::endl;
    } else {
      err << "refgrove serve: reload failed; the data set loaded before is still served" << std::endl;
    }
  }
  server.stop();
  serving.join();
  return 0;
}

}  // namespace refgrove::web
