// The explorer's server on 127.0.0.1 and a free port, serving the sample:
// the API's answers against the C operations, its errors, bad requests, and
// reloads while requests run.
#include "web/explorer_server.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <climits>
#include <map>
#include <memory>
#include <thread>

#include "core/data_view.h"
#include "core/document_text.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"
#include "search/word_search.h"
#include "testing/data_files.h"
#include "web/served_sample_test.h"

namespace refgrove::web {
namespace {

using JsonValue = nlohmann::json;

JsonValue get_json(const std::string& path) {
  const Reply reply = get(path);
  EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
  return reply.status == 200 ? reply.json() : JsonValue();
}

// Every DID that has a document in the sample.
std::vector<int> sample_dids() {
  const RefgroveData& d = sample().data();
  int end = 0;
  last_did(d, &end);
  std::vector<int> dids;
  for (int did = 0; did < end; ++did) {
    if (has_graph_info(d, did) || has_word_info(d, did)) dids.push_back(did);
  }
  return dids;
}

std::vector<int> dids_of(const JsonValue& papers) {
  std::vector<int> dids;
  for (const JsonValue& p : papers) dids.push_back(p.at("did").get<int>());
  return dids;
}

// The documents are those there are, not the word-idx headers that the
// module's stats count with their end sentinel.
TEST(ExplorerApi, StatsAreTheDataSetsStatistics) {
  int headers = 0, words = 0, authors = 0, last = 0;  // headers: 32 documents and the end sentinel
  stats(&sample().data(), &headers, &words, &authors);
  last_did(sample().data(), &last);
  const JsonValue s = get_json("/api/stats");
  // 32 with words, 32 graph records: 146 has no words, 150 no graph record.
  EXPECT_EQ(s, (JsonValue{{"documents", 33}, {"words", words}, {"authors", authors}, {"last_did", last}}));
  EXPECT_EQ(s.at("documents"), sample_dids().size());
}

TEST(ExplorerApi, EveryPaperAnswersWhatTheOperationsGive) {
  const RefgroveData& d = sample().data();
  for (const int did : sample_dids()) {
    SCOPED_TRACE("DID " + std::to_string(did));
    const JsonValue p = get_json("/api/paper/" + std::to_string(did));
    EXPECT_EQ(p.at("did"), did);
    EXPECT_EQ(p.at("key"), key_text(d, did));
    EXPECT_EQ(p.at("title"), title_text(d, did));
    EXPECT_EQ(p.at("abstract"), abstract_text(d, did));
    int year = -1;
    get_year(d, did, &year);
    EXPECT_EQ(p.at("year"), year == -1 || !has_graph_info(d, did) ? JsonValue() : JsonValue(year));
    int n = 0;
    author_count(d, did, &n);
    ASSERT_EQ(p.at("authors").size(), static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
      int id = 0;
      get_author_id(d, did, i, &id);
      EXPECT_EQ(p["authors"][i], (JsonValue{{"id", id}, {"name", author_name_text(d, id)}}));
    }
    std::vector<int> cites, cited_by;
    cite_count(d, did, &n);
    for (int i = 0, gid = 0, cited = 0; i < n; ++i) cites.push_back((get_cite(d, did, i, &cited, &gid), cited));
    cited_by_count(d, did, &n);
    for (int i = 0, citing = 0; i < n; ++i) cited_by.push_back((get_cited_by(d, did, i, &citing), citing));
    EXPECT_EQ(dids_of(p.at("cites")), cites);
    cited_by.erase(std::unique(cited_by.begin(), cited_by.end()), cited_by.end());  // a paper citing twice
    EXPECT_EQ(dids_of(p.at("cited_by")), cited_by);
    EXPECT_EQ(p.at("citation_count"), cited_by.size());
    if (!has_graph_info(d, did)) {
      EXPECT_TRUE(p.at("pagerank").is_null());
      continue;
    }
    EXPECT_EQ(p.at("pagerank"), pagerank(d, did));
    const auto similar_dids = [&](SimilarBy by) {
      std::vector<int> dids;
      for (const SimilarDocument& s : similar(d, did, by, 10)) dids.push_back(s.did);
      return dids;
    };
    EXPECT_EQ(dids_of(p.at("similar").at("cocitation")), similar_dids(SimilarBy::cocitation));
    EXPECT_EQ(dids_of(p.at("similar").at("coupling")), similar_dids(SimilarBy::coupling));
  }
}

TEST(ExplorerApi, EveryAuthorHasTheirPapersAndCoauthorsBothWays) {
  const RefgroveData& d = sample().data();
  std::map<std::pair<int, int>, int> shared;
  for (int id = 0; id < get_nb_authors(d); ++id) {
    SCOPED_TRACE("author " + std::to_string(id));
    const JsonValue a = get_json("/api/author/" + std::to_string(id));
    EXPECT_EQ(a.at("name"), author_name_text(d, id));
    std::vector<int> papers;
    int n = 0;
    author_doc_count(d, id, &n);
    for (int i = 0, did = 0; i < n; ++i) papers.push_back((get_author_doc(d, id, i, &did), did));
    EXPECT_EQ(dids_of(a.at("papers")), papers);
    int previous = INT_MAX;
    for (const JsonValue& c : a.at("coauthors")) {
      EXPECT_LE(c.at("shared").get<int>(), previous) << "most shared first";
      previous = c.at("shared").get<int>();
      shared[{id, c.at("id").get<int>()}] = previous;
    }
  }
  for (const auto& [pair, count] : shared) {
    EXPECT_EQ((shared[{pair.second, pair.first}]), count) << pair.first << " and " << pair.second;
  }
  // In the sample, A. Lee and M. Chen wrote 104 and 107 together.
  EXPECT_GE(shared.size(), 2u);
}

TEST(ExplorerApi, SearchFindsWordsKeysAndAuthors) {
  const RefgroveData& d = sample().data();
  const struct {
    std::string query, mode;
    bool exact;
    std::string key;     // a key expected among "keys", or ""
    std::string author;  // an author expected among "authors", or ""
  } cases[] = {
      {"graph*", "and", false, "", ""},
      {"graph citation", "or", false, "", ""},
      {"graph citation", "and", true, "", ""},
      {"graphs", "and", false, "", ""},
      {"graphs", "or", true, "", ""},
      {"%22citation%20networks%22", "and", false, "", ""},
      {"chen95", "and", false, "chen95", ""},
      {"lee", "and", false, "", "A. Lee"},
      {"erd%C5%91s", "and", false, "", "P. Erdős"},
      {"baeza-yates", "or", false, "", "R. Baeza-Yates"},
      {"ERDOS", "and", false, "", "P. Erdős"},
      {"erdo%CC%8Bs", "and", false, "", "P. Erdős"},  // o and a combining double acute
  };
  for (const auto& c : cases) {
    const std::string path = "/api/search?q=" + c.query + "&mode=" + c.mode + "&limit=2" + (c.exact ? "&exact=1" : "");
    const JsonValue r = get_json(path);
    std::vector<int> expected;
    const std::string query = r.at("query");
    const SearchAnswer answer = search(d, query, {c.mode == "and" ? SearchMode::kAnd : SearchMode::kOr, c.exact, 2});
    for (const SearchHit& hit : answer.hits) expected.push_back(hit.did);
    EXPECT_EQ(dids_of(r.at("hits")), expected) << path;
    EXPECT_EQ(r.at("total"), answer.total) << path;
    EXPECT_EQ(r.at("truncated"), answer.total > 2) << path;
    EXPECT_EQ(r.at("exact"), c.exact) << path;
    if (!c.key.empty()) {
      EXPECT_EQ(r.at("keys").at(0).at("key"), c.key) << path;
    }
    if (!c.author.empty()) {
      EXPECT_EQ(r.at("authors").at(0).at("name"), c.author) << path;
    }
  }
}

TEST(ExplorerApi, NeighbourhoodsAreTheNetworksOwn) {
  const RefgroveData& d = sample().data();
  for (const int did : sample_dids()) {
    if (!has_graph_info(d, did)) continue;
    for (const char* direction : {"out", "in", "both"}) {
      for (const int hops : {1, 2}) {
        const std::string path = "/api/neighbourhood/" + std::to_string(did) + "?hops=" + std::to_string(hops) +
                                 "&direction=" + direction + "&limit=8";
        const JsonValue n = get_json(path);
        const Neighbourhood expected = neighbourhood(d, did, {hops, direction_from_text(direction), 8});
        std::vector<int> dids, edges, shown_edges;
        for (const NeighbourNode& node : expected.nodes) dids.push_back(node.did);
        for (const CitationEdge& e : expected.edges) edges.insert(edges.end(), {e.citing, e.cited});
        for (const JsonValue& l : n.at("links"))
          shown_edges.insert(shown_edges.end(), {l.at("source"), l.at("target")});
        EXPECT_EQ(dids_of(n.at("nodes")), dids) << path;
        const std::size_t total = neighbourhood(d, did, {hops, direction_from_text(direction), 1000}).nodes.size();
        EXPECT_EQ(n.at("total"), total) << path;
        EXPECT_EQ(n.at("truncated"), total > 8) << path;
        EXPECT_EQ(shown_edges, edges) << path;
      }
    }
  }
}

TEST(ExplorerApi, PathsBetweenEveryTwoAuthors) {
  const RefgroveData& d = sample().data();
  for (int a = 0; a < get_nb_authors(d); ++a) {
    for (int b = 0; b < get_nb_authors(d); ++b) {
      const std::string path = "/api/path?from=" + std::to_string(a) + "&to=" + std::to_string(b);
      const JsonValue r = get_json(path);
      const std::optional<CollaborationPath> expected = collaboration_path(d, a, b);
      if (!expected) {
        EXPECT_TRUE(r.at("distance").is_null()) << path;
        continue;
      }
      std::vector<int> authors;
      for (const JsonValue& author : r.at("path")) authors.push_back(author.at("id"));
      EXPECT_EQ(r.at("distance"), expected->documents.size()) << path;
      EXPECT_EQ(authors, std::vector<int>(expected->authors.begin(), expected->authors.end())) << path;
      EXPECT_EQ(dids_of(r.at("papers")), std::vector<int>(expected->documents.begin(), expected->documents.end()));
    }
  }
}

TEST(ExplorerApi, RankingsByBothMeasuresAndYears) {
  const RefgroveData& d = sample().data();
  const struct {
    std::string query;
    RankBy by;
    std::optional<YearRange> years;
  } cases[] = {
      {"by=citations&limit=5", RankBy::citations, {}},
      {"by=pagerank&limit=5", RankBy::pagerank, {}},
      {"by=pagerank&limit=1000&years=1995-1997", RankBy::pagerank, YearRange{1995, 1997}},
      {"limit=3&years=1996-1996", RankBy::citations, YearRange{1996, 1996}},
      {"years=3000-4000", RankBy::citations, YearRange{3000, 4000}},
  };
  for (const auto& c : cases) {
    const JsonValue r = get_json("/api/rank?" + c.query);
    std::vector<int> expected;
    for (const RankedDocument& doc : ranked(d, c.by, r.at("papers").size() + 1, c.years)) expected.push_back(doc.did);
    expected.resize(r.at("papers").size());
    EXPECT_EQ(dids_of(r.at("papers")), expected) << c.query;
    const std::size_t total = ranked(d, c.by, 1000, c.years).size();
    EXPECT_EQ(r.at("total"), total) << c.query;
    EXPECT_EQ(r.at("truncated"), total > r.at("papers").size()) << c.query;
    for (const JsonValue& p : r.at("papers")) {
      EXPECT_EQ(p.at("citation_count"), citation_count(d, p.at("did"))) << c.query;
      if (c.years) {
        EXPECT_TRUE(p.at("year") >= c.years->from && p.at("year") <= c.years->to) << c.query;
      }
    }
  }
}

TEST(ExplorerApi, BadRequestsGetAnErrorOfTheirKind) {
  const struct {
    std::string path;
    int status;
  } cases[] = {
      {"/api/paper/5", 404},           // below the last DID, no document
      {"/api/paper/2147483647", 404},  // the largest DID
      {"/api/paper/2147483648", 400},  // beyond int32
      {"/api/paper/-1", 400},
      {"/api/paper/1e3", 400},
      {"/api/paper/%31%30%31x", 400},  // "101x" once decoded
      {"/api/paper/", 400},
      {"/api/author/1000000", 404},
      {"/api/author/abc", 400},
      {"/api/nothing", 404},
      {"/api/paper/101/more", 404},
      {"/api/search", 400},  // no q
      {"/api/search?q=", 400},
      {"/api/search?q=*", 400},
      {"/api/search?q=graph&mode=xor", 400},
      {"/api/search?q=graph&exact=yes", 400},
      {"/api/search?q=%22graph", 400},
      {"/api/search?q=graph&limit=0", 400},
      {"/api/search?q=graph&limit=1001", 400},
      {"/api/neighbourhood/110?hops=0", 400},
      {"/api/neighbourhood/110?hops=4", 400},
      {"/api/neighbourhood/110?direction=up", 400},
      {"/api/neighbourhood/110?limit=-5", 400},
      {"/api/neighbourhood/5", 404},
      {"/api/neighbourhood/x", 400},
      {"/api/path?from=1", 400},
      {"/api/path?from=1&to=x", 400},
      {"/api/path?from=1&to=99999", 404},
      {"/api/rank?by=fame", 400},
      {"/api/rank?years=1999-1995", 400},
      {"/api/rank?years=1999", 400},
  };
  for (const auto& c : cases) {
    const Reply reply = get(c.path);
    EXPECT_EQ(reply.status, c.status) << c.path;
    EXPECT_TRUE(reply.json().at("error").is_string()) << c.path << ": " << reply.body;
  }
}

TEST(ExplorerServer, ServesItsEmbeddedPageAndNothingElse) {
  EXPECT_NE(get("/").body.find("explorer.js"), std::string::npos);
  EXPECT_NE(get("/d3.min.js").body.find("forceSimulation"), std::string::npos);
  for (const std::string path : {"/../web/page/index.html", "/%2e%2e/%2e%2e/etc/passwd", "/etc/passwd", "/index.html/",
                                 "/page/index.html", "/%zz", "/CMakeLists.txt"}) {
    const int status = get(path).status;
    EXPECT_TRUE(status == 0 || (status >= 400 && status < 500)) << path << ": " << status;
  }
}

// ---- Bad clients ----------------------------------------------------------

TEST(ExplorerServer, MalformedRequestsGetA4xxOrAClosedConnection) {
  const std::string host = sample().host();
  const std::string requests[] = {
      get_request("/api/stats?q=" + std::string(1 << 20, 'a'), host),
      get_request("/api/paper/%%%zz", host),
      get_request("/%2e%2e/%2e%2e/etc/passwd", host),
      get_request("../../etc/passwd", host),
      "BREW /api/stats HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n",
      "GET /api/stats HTTP/9.9\r\n\r\n",
      "\x01\x02garbage\r\n\r\n",
      get_request("/api/stats", host, "X-Long: " + std::string(1 << 20, 'h') + "\r\n"),
  };
  for (const std::string& request : requests) {
    RawConnection c(sample().port());
    ASSERT_TRUE(c.connected());
    c.send_text(request);
    c.end_sending();
    const std::string answer = c.receive();
    const bool client_error = answer.rfind("HTTP/1.1 4", 0) == 0;
    EXPECT_TRUE(answer.empty() || client_error) << request.substr(0, 60) << " -> " << answer.substr(0, 60);
  }
  EXPECT_EQ(get("/api/stats").status, 200);
}

TEST(ExplorerServer, AnswersOthersWhileAThousandConnectionsIdle) {
  std::vector<std::unique_ptr<RawConnection>> idle;
  for (int i = 0; i < 1000; ++i) idle.push_back(std::make_unique<RawConnection>(sample().port()));
  idle[0]->send_text("GET /api/stats HTTP/1.1\r\n");  // and never the end of its header
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(get("/api/paper/101").status, 200);
  // Sooner than the 5 s after which idle connections are closed: the answer
  // did not wait for them to go (with room for a sanitized build on a busy machine).
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST(ExplorerServer, OutlivesClientsThatLeaveMidResponse) {
  for (int i = 0; i < 20; ++i) {
    RawConnection c(sample().port());
    c.send_text("GET /d3.min.js HTTP/1.1\r\nHost: " + sample().host() + "\r\n\r\n");
    c.receive(100);
  }
  EXPECT_EQ(get("/api/stats").status, 200);
}

// ---- Reloads --------------------------------------------------------------

TEST(ExplorerServer, ReloadsWhileRequestsRunFailNone) {
  TempDir other;
  DataDirBuilder().add({7, "seven", 2001, {}, {"Seven"}, {"Someone"}, {"seven"}}).write(other.path());
  const DataSetPtr sets[] = {ServedSample::load(sample().dir()), ServedSample::load(other.path())};
  std::atomic<bool> done{false};
  std::atomic<int> failures{0}, answered{0};
  std::vector<std::thread> clients;
  for (int t = 0; t < 4; ++t) {
    clients.emplace_back([&] {
      httplib::Client client("127.0.0.1", sample().port());
      while (!done) {
        const httplib::Result r = client.Get("/api/paper/7");  // 404 in the sample, 200 in the other
        if (!r || (r->status != 200 && r->status != 404)) ++failures;
        ++answered;
      }
    });
  }
  for (int i = 0; answered < 1000; ++i) {
    sample().slot().replace(sets[i % 2]);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  done = true;
  for (std::thread& t : clients) t.join();
  sample().slot().replace(sets[0]);
  EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace refgrove::web
