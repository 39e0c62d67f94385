// Tokenizer throughput on a generated word dump, next to `wc -w` on the
// same file.
//
// usage: tokenizer_bench [--runs R] [--cpu N]
//
// The file (about 100 MB; REFGROVE_BENCH_MB overrides the size) looks like a
// word dump: one document per line, a document id, one more field, then words
// with some punctuation, tabs and control characters. It is tokenized
// through a StreamTokenizer over a std::ifstream with the word-dump
// language: punctuation and newline as single-character tokens, control
// characters as white space, strings and number reading off, one empty
// sub-language selected, reading with has_more_tokens and next_token.
// The program alternates R times (default 5) between `wc -w` and
// tokenizing, so that both see the machine in the same state, and prints
// the best time of each and their ratio. Both run on one processor, the one
// the program started on or processor N: on a virtual machine the
// processors may run at different speeds.
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "tokenizer/stream_tokenizer.h"

namespace refgrove {

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

// Seconds to tokenize the whole file; *tokens is set to the token count.
double TokenizeOnce(std::size_t* tokens) {
  TokenizerLanguage lang;
  MakeWordLanguage(&lang);
  const auto start = std::chrono::steady_clock::now();
  std::ifstream in(Dump().path, std::ios::binary);
  StreamTokenizer t(&in, &lang);
  t.select_language(0);
  std::size_t n = 0;
  while (t.has_more_tokens()) {
    benchmark::DoNotOptimize(t.next_token().data());
    ++n;
  }
  *tokens = n;
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Seconds for `wc -w` on the file, or a negative value when it failed.
double WcOnce() {
  std::fflush(nullptr);
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
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? s : -1;
}

}  // namespace

int run_program(int argc, char** argv) {
  int runs = 5;
  int cpu = sched_getcpu();
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc) {
      runs = std::max(1, std::atoi(argv[++i]));
    } else if (std::strcmp(argv[i], "--cpu") == 0 && i + 1 < argc) {
      cpu = std::atoi(argv[++i]);
    } else {
      std::fprintf(stderr, "usage: tokenizer_bench [--runs R] [--cpu N]\n");
      return 2;
    }
  }
  // wc -w inherits the affinity.
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(cpu, &one);
  if (cpu < 0 || sched_setaffinity(0, sizeof one, &one) != 0) {
    std::perror("tokenizer_bench: sched_setaffinity");
    return 1;
  }
  std::printf("both programs on processor %d\n", cpu);
  GenerateDump();
  const double mb = static_cast<double>(Dump().bytes) / 1e6;
  double best_tokenize = 0, best_wc = 0;
  std::size_t tokens = 0;
  int status = 0;
  for (int r = 0; r < runs; ++r) {
    const double wc = WcOnce();
    const double tokenize = TokenizeOnce(&tokens);
    if (wc < 0) {
      std::fprintf(stderr, "tokenizer_bench: wc -w failed\n");
      status = 1;
      break;
    }
    std::printf("run %d: StreamTokenizer %.3f s, wc -w %.3f s\n", r + 1, tokenize, wc);
    if (r == 0 || tokenize < best_tokenize) best_tokenize = tokenize;
    if (r == 0 || wc < best_wc) best_wc = wc;
  }
  if (status == 0) {
    std::printf(
        "\n%.1f MB, %zu tokens: StreamTokenizer %.3f s (%.0f MB/s), wc -w %.3f s (%.0f MB/s), "
        "ratio %.2f\n",
        mb, tokens, best_tokenize, mb / best_tokenize, best_wc, mb / best_wc, best_tokenize / best_wc);
  }
  std::remove(Dump().path.c_str());
  rmdir(Dump().dir.c_str());
  return status;
}

}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
