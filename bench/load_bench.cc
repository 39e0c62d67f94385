// Loading and querying a data directory of 200,000 synthetic documents
// (about 10 citations, 9 title words, 2.5 authors and 100 abstract words
// each), written with the production writers.
//
// Reported beside the timings, measured in the same run:
//   load_x_read    load time / time to read graph_data, word-table and
//                  word-idx into memory once (word-data is mapped, not read)
//   heap_x_files   memory a loaded data set holds (heap bytes in use after a
//                  load minus before) / bytes of those files; the mapped
//                  word-data stays in the page cache and is not counted
// Set REFGROVE_BENCH_DIR to keep the generated directory between runs.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "graph/graph_file.h"
#include "refgrove/query.h"
#include "words/compacted_string_table.h"
#include "words/string_table.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

constexpr int kDocuments = 200000;
constexpr int kVocabulary = 60000;
constexpr int kAuthors = 120000;

// Ranks 0..n-1 drawn with probability proportional to 1/(rank+1).
class Zipf {
 public:
  explicit Zipf(int n) : cdf_(static_cast<std::size_t>(n)) {
    double sum = 0;
    for (int i = 0; i < n; ++i) cdf_[static_cast<std::size_t>(i)] = sum += 1.0 / (i + 1);
    for (double& c : cdf_) c /= sum;
  }
  std::uint32_t operator()(std::mt19937& rng) {
    const double u = std::uniform_real_distribution<double>(0, 1)(rng);
    return static_cast<std::uint32_t>(std::lower_bound(cdf_.begin(), cdf_.end(), u) - cdf_.begin());
  }

 private:
  std::vector<double> cdf_;
};

int around(std::mt19937& rng, int mean, int spread) {
  return std::max(0, mean + std::uniform_int_distribution<int>(-spread, spread)(rng));
}

void write_synthetic_directory(const std::string& dir) {
  std::mt19937 rng(20021121);
  Zipf zipf(kVocabulary);
  StringTable words, authors;
  for (int v = 0; v < kVocabulary; ++v) words.String2ID("word" + std::to_string(v * 7919 % 1000003));
  for (int a = 0; a < kAuthors; ++a) authors.String2ID("A. Author" + std::to_string(a));

  std::ofstream idx(dir + kWordIdxFile, std::ios::binary), data(dir + kWordDataFile, std::ios::binary);
  Arena arena;
  std::vector<RefgroveGraphData*> docs;
  std::int64_t position = 0;
  for (int i = 0; i < kDocuments; ++i) {
    const int did = i + i / 9;  // ascending, with gaps
    write_document_word_info(idx, DocumentWordInfo{did, static_cast<std::int32_t>(position)});
    for (int n = around(rng, 100, 30); n > 0; --n, position += kWordIdBytes)
      write_word_id(data, WordId::from_id(zipf(rng)));

    std::vector<CitationInfo> cites(static_cast<std::size_t>(around(rng, 10, 5)));
    for (CitationInfo& c : cites)
      c = CitationInfo{static_cast<std::int32_t>(rng() % 100000), static_cast<std::int32_t>(rng() % kDocuments)};
    std::vector<WordId> title(static_cast<std::size_t>(std::max(1, around(rng, 9, 4))));
    for (WordId& w : title) w = WordId::from_id(zipf(rng));
    std::vector<std::int32_t> ids(static_cast<std::size_t>(1 + rng() % 4));
    for (std::int32_t& a : ids) a = static_cast<std::int32_t>(rng() % kAuthors);
    docs.push_back(
        RefgroveGraphData::create(arena, did, "key" + std::to_string(did), 1990 + i % 13, cites, title, ids));
  }
  write_document_word_info(idx, DocumentWordInfo{-1, static_cast<std::int32_t>(position)});
  std::ofstream graph(dir + kGraphFile, std::ios::binary);
  write_graph_file(graph, CompactedStringTable(authors), docs);
  std::ofstream table(dir + kWordTableFile, std::ios::binary);
  CompactedStringTable(words).write(table);
}

const std::string& data_directory() {
  static const std::string dir = [] {
    const char* keep = std::getenv("REFGROVE_BENCH_DIR");
    std::string d =
        keep ? std::string(keep) : (std::filesystem::temp_directory_path() / "refgrove-load-bench").string();
    if (d.back() != '/') d += '/';
    std::filesystem::create_directories(d);
    if (!std::filesystem::exists(d + kWordTableFile)) write_synthetic_directory(d);
    return d;
  }();
  return dir;
}

const char* const kReadFiles[] = {kGraphFile, kWordTableFile, kWordIdxFile};

std::size_t bytes_of_read_files() {
  std::size_t total = 0;
  for (const char* f : kReadFiles) total += std::filesystem::file_size(data_directory() + f);
  return total;
}

void read_files_once() {
  for (const char* f : kReadFiles) {
    std::ifstream in(data_directory() + f, std::ios::binary);
    std::string bytes(std::filesystem::file_size(data_directory() + f), '\0');
    in.read(&bytes[0], static_cast<std::streamsize>(bytes.size()));
    benchmark::DoNotOptimize(bytes.data());
  }
}

std::size_t heap_bytes_in_use() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// Loads with the progress messages going nowhere.
void load_quietly() {
  std::ostringstream sink;
  std::streambuf* old = std::cerr.rdbuf(sink.rdbuf());
  refgrove_load_1(data_directory().c_str());
  std::cerr.rdbuf(old);
}

void unload() {
  delete refgrove_data;
  refgrove_data = nullptr;
}

template <class F>
double seconds_of_best_of(int runs, F f) {
  double best = 1e9;
  for (int r = 0; r < runs; ++r) {
    const auto start = std::chrono::steady_clock::now();
    f();
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

void BM_ReadFilesOnce(benchmark::State& state) {
  data_directory();
  for (auto _ : state) read_files_once();
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes_of_read_files()));
}
BENCHMARK(BM_ReadFilesOnce)->Unit(benchmark::kMillisecond);

void BM_Load(benchmark::State& state) {
  unload();
  const std::size_t before = heap_bytes_in_use();
  load_quietly();
  state.counters["heap_x_files"] =
      static_cast<double>(heap_bytes_in_use() - before) / static_cast<double>(bytes_of_read_files());
  const double read = seconds_of_best_of(5, read_files_once);
  const auto fresh_load = [] {
    unload();
    const auto start = std::chrono::steady_clock::now();
    load_quietly();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  double best = 1e9;
  for (auto _ : state) {
    const double seconds = fresh_load();
    best = std::min(best, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["load_x_read"] = best / read;
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

// Queries on random DIDs of the loaded set, most of them present.
template <class Query>
void run_queries(benchmark::State& state, Query query) {
  if (refgrove_data == nullptr) load_quietly();
  int last = 0;
  refgrove_last_did_1(&last);
  std::mt19937 rng(7);
  std::vector<int> dids(1 << 16);
  for (int& d : dids) d = static_cast<int>(rng() % static_cast<unsigned>(last));
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(dids[i]));
    i = (i + 1) & (dids.size() - 1);
  }
}

void BM_GetYear(benchmark::State& s) {
  run_queries(s, [](int d) {
    int y;
    return refgrove_get_year_1(d, &y) + y;
  });
}
void BM_GetKey(benchmark::State& s) {
  run_queries(s, [](int d) {
    const char* k = nullptr;
    return refgrove_get_key_1(d, &k) + (k != nullptr);
  });
}
void BM_GetCite(benchmark::State& s) {
  run_queries(s, [](int d) {
    int c, g;
    return refgrove_get_cite_1(d, 1, &c, &g) + c;
  });
}
void BM_GetTitleWord(benchmark::State& s) {
  run_queries(s, [](int d) {
    const char* w = nullptr;
    return refgrove_get_title_word_1(d, 0, &w) + (w != nullptr);
  });
}
void BM_GetAuthor(benchmark::State& s) {
  run_queries(s, [](int d) {
    const char* a = nullptr;
    return refgrove_get_author_1(d, 0, &a) + (a != nullptr);
  });
}
void BM_WordCount(benchmark::State& s) {
  run_queries(s, [](int d) {
    int n;
    return refgrove_word_count_1(d, &n);
  });
}
void BM_GetWord(benchmark::State& s) {
  run_queries(s, [](int d) {
    const char* w = nullptr;
    return refgrove_get_word_1(d, 0, &w) + (w != nullptr);
  });
}
BENCHMARK(BM_GetYear);
BENCHMARK(BM_GetKey);
BENCHMARK(BM_GetCite);
BENCHMARK(BM_GetTitleWord);
BENCHMARK(BM_GetAuthor);
BENCHMARK(BM_WordCount);
BENCHMARK(BM_GetWord);

}  // namespace

}  // namespace refgrove

BENCHMARK_MAIN();
