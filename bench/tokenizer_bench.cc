// Tokenizer throughput on a generated word dump, next to `wc -w` on the same
// file.
//
// The file (about 100 MB; REFGROVE_BENCH_MB overrides the size) looks like a
// word dump: one document per line, a document id, one more field, then words
// with some punctuation, tabs and control characters. It is tokenized
// through a StreamTokenizer over a std::ifstream with the word-dump
// language: punctuation and newline as single-character tokens, control
// characters as white space, strings and number reading off, one empty
// sub-language selected. At the end the program prints both times and their
// ratio.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "tokenizer/stream_tokenizer.h"

namespace {

struct DumpFile {
  std::string dir;
  std::string path;
  std::size_t bytes = 0;
};

DumpFile& Dump() {
  static DumpFile dump;
  return dump;
}

void GenerateDump() {
  char tmpl[] = "/tmp/tokenizer_bench.XXXXXX";
  if (mkdtemp(tmpl) == nullptr) {
    std::perror("mkdtemp");
    std::exit(1);
  }
  DumpFile& d = Dump();
  d.dir = tmpl;
  d.path = d.dir + "/word-dump.txt";
  std::size_t target_mb = 100;
  if (const char* mb = std::getenv("REFGROVE_BENCH_MB")) target_mb = std::strtoul(mb, nullptr, 10);
  const std::size_t target = target_mb * 1000 * 1000;

  std::mt19937 rng(2002);
  std::vector<std::string> vocabulary;
  for (int i = 0; i < 50000; ++i) {
    std::string w;
    const int len = 2 + static_cast<int>(rng() % 10);
    for (int k = 0; k < len; ++k) w += static_cast<char>('a' + rng() % 26);
    vocabulary.push_back(w);
  }
  const char* punctuation[] = {",", ".", ":", ";", "(", ")", "-", "'"};
  std::ofstream out(d.path, std::ios::binary);
  std::string line;
  std::size_t written = 0;
  for (int did = 1; written < target; ++did) {
    line = std::to_string(did) + " " + std::to_string(rng() % 1000);
    const int words = 20 + static_cast<int>(rng() % 150);
    for (int i = 0; i < words; ++i) {
      const unsigned r = rng() % 100;
      line += r < 2 ? "\t" : r < 3 ? "\x01" : " ";
      line += vocabulary[rng() % vocabulary.size()];
      if (r >= 90) line += punctuation[r % 8];
    }
    line += '\n';
    out << line;
    written += line.size();
  }
  d.bytes = written;
}

// The language of the word dumps.
void MakeWordLanguage(TokenizerLanguage* lang) {
  lang->single_char_tokens.add_all("\\=+-*/:;.,;~<>`'?[]{}^$#@!%&()|\"\n");
  for (int c = 1; c < 32; ++c) {
    if (c != '\n') lang->space_chars.add(c);
  }
  for (int c : {32, 255, 127, 128}) lang->space_chars.add(c);
  lang->strings = 0;
  lang->addSubLanguages(1);
  lang->number_char = 0;
}

double g_tokenize_seconds = 0;
double g_wc_seconds = 0;

void BM_StreamTokenizer(benchmark::State& state) {
  TokenizerLanguage lang;
  MakeWordLanguage(&lang);
  std::size_t tokens = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::ifstream in(Dump().path, std::ios::binary);
    StreamTokenizer t(&in, &lang);
    t.select_language(0);
    tokens = 0;
    while (t.has_more_tokens()) {
      benchmark::DoNotOptimize(t.next_token().data());
      ++tokens;
    }
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    g_tokenize_seconds = g_tokenize_seconds == 0 ? s : std::min(g_tokenize_seconds, s);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Dump().bytes));
  state.counters["tokens"] = static_cast<double>(tokens);
}

void BM_WcW(benchmark::State& state) {
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
      if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(127);
      execlp("wc", "wc", "-w", Dump().path.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      state.SkipWithError("wc -w failed");
      return;
    }
    g_wc_seconds = g_wc_seconds == 0 ? s : std::min(g_wc_seconds, s);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Dump().bytes));
}

BENCHMARK(BM_StreamTokenizer)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_WcW)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  GenerateDump();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  const double mb = static_cast<double>(Dump().bytes) / 1e6;
  if (g_tokenize_seconds > 0 && g_wc_seconds > 0) {
    std::printf("\n%.1f MB: StreamTokenizer %.3f s (%.0f MB/s), wc -w %.3f s (%.0f MB/s), "
                "ratio %.2f\n",
                mb, g_tokenize_seconds, mb / g_tokenize_seconds, g_wc_seconds,
                mb / g_wc_seconds, g_tokenize_seconds / g_wc_seconds);
  }
  std::remove(Dump().path.c_str());
  rmdir(Dump().dir.c_str());
  return 0;
}
