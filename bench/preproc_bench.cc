// Full preprocessing of a generated input, timed side by side with `wc -w`
// over the same four dumps in the same run.
//
// usage: preproc_bench [--docs N] [--runs R] [--keep]
//
// Generates N documents (default 200,000: about 190 MB of dumps, 120 words
// per abstract) into a fresh directory under /tmp, reads them once to warm
// the page cache, then alternates R times (default 3) between `wc -w` on the
// four files and a preprocessing run (refgrove_preproc_1 in a child process,
// its messages discarded, into an empty output directory). Prints the best
// time of each, their ratio, and the peak resident memory of the
// preprocessing child. --keep leaves the directory in place.
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "generate/dump_generator.h"
#include "refgrove/preprocess.h"

namespace refgrove {

namespace {

const char* const kDumps[] = {"graph-data-aug-2002.txt", "word-data1-mar-2002.txt", "word-data2-mar-2002.txt",
                              "word-data3-mar-2002.txt"};

struct Timing {
  double seconds = 0;
  long max_rss_kb = 0;
  int status = 0;
};

// Runs `child` in a forked process with its standard streams on /dev/null;
// returns the wall time, the child's peak resident size and exit status.
template <class F>
Timing run_child(F child) {
  std::fflush(nullptr);
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr || std::freopen("/dev/null", "w", stderr) == nullptr) {
      _exit(126);
    }
    child();
    std::exit(0);
  }
  int status = 0;
  struct rusage usage {};
  wait4(pid, &status, 0, &usage);
  Timing t;
  t.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  t.max_rss_kb = usage.ru_maxrss;
  t.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return t;
}

Timing run_wc(const std::string& dir, bool c_locale) {
  std::vector<std::string> files;
  for (const char* f : kDumps) files.push_back(dir + f);
  return run_child([&] {
    if (c_locale) setenv("LC_ALL", "C", 1);
    std::vector<char*> argv = {const_cast<char*>("wc"), const_cast<char*>("-w")};
    for (std::string& f : files) argv.push_back(&f[0]);
    argv.push_back(nullptr);
    execvp("wc", argv.data());
    _exit(127);
  });
}

}  // namespace

int run_program(int argc, char** argv) {
  DocumentGeneratorOptions options;
  options.docs = 200000;
  int runs = 3;
  bool keep = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--docs") == 0 && i + 1 < argc) {
      options.docs = std::atoll(argv[++i]);
    } else if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc) {
      runs = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--keep") == 0) {
      keep = true;
    } else {
      std::fprintf(stderr, "usage: preproc_bench [--docs N] [--runs R] [--keep]\n");
      return 2;
    }
  }

  char tmpl[] = "/tmp/preproc_bench.XXXXXX";
  if (mkdtemp(tmpl) == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  const std::string dir = std::string(tmpl) + "/";
  const std::string in = dir + "in/", out = dir + "out/";
  std::filesystem::create_directories(in);
  std::filesystem::create_directories(out);

  const auto gen_start = std::chrono::steady_clock::now();
  DumpGeneratorResult generated;
  std::string error;
  if (!generate_dumps(in, options, &generated, &error)) {
    std::fprintf(stderr, "preproc_bench: %s\n", error.c_str());
    return 1;
  }
  const double gen_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - gen_start).count();
  const double mb = static_cast<double>(generated.bytes) / 1e6;
  std::printf("input: %lld documents, %.1f MB of dumps, %.1f abstract words per document (generated in %.1f s)\n",
              static_cast<long long>(options.docs), mb,
              static_cast<double>(generated.words) / static_cast<double>(options.docs), gen_seconds);

  run_wc(in, false);  // warms the page cache
  Timing best_wc, best_wc_c, best_pre;
  for (int r = 0; r < runs; ++r) {
    const Timing wc = run_wc(in, false);
    const Timing wc_c = run_wc(in, true);
    // Into an empty directory each time, as a new data directory is made:
    // replacing the files of the previous run would add the time it takes
    // to truncate them.
    std::filesystem::remove_all(out);
    std::filesystem::create_directories(out);
    const Timing pre = run_child([&] { refgrove_preproc_1(in.c_str(), out.c_str()); });
    if (wc.status != 0 || wc_c.status != 0 || pre.status != 0) {
      std::fprintf(stderr, "preproc_bench: a run failed (wc %d, wc C %d, preprocessing %d)\n", wc.status, wc_c.status,
                   pre.status);
      return 1;
    }
    std::printf("run %d: preprocessing %.3f s (peak RSS %.1f MB), wc -w %.3f s, LC_ALL=C wc -w %.3f s\n", r + 1,
                pre.seconds, static_cast<double>(pre.max_rss_kb) / 1024, wc.seconds, wc_c.seconds);
    if (r == 0 || wc.seconds < best_wc.seconds) best_wc = wc;
    if (r == 0 || wc_c.seconds < best_wc_c.seconds) best_wc_c = wc_c;
    if (r == 0 || pre.seconds < best_pre.seconds) best_pre = pre;
  }
  const char* locale = std::getenv("LC_ALL");
  if (locale == nullptr || *locale == '\0') locale = std::getenv("LANG");
  std::printf("\nbest of %d, %.1f MB:\n", runs, mb);
  std::printf("  preprocessing      %.3f s  %6.1f MB/s  peak RSS %.1f MB\n", best_pre.seconds, mb / best_pre.seconds,
              static_cast<double>(best_pre.max_rss_kb) / 1024);
  std::printf("  wc -w (%s)  %.3f s  %6.1f MB/s\n", locale != nullptr ? locale : "default locale", best_wc.seconds,
              mb / best_wc.seconds);
  std::printf("  LC_ALL=C wc -w     %.3f s  %6.1f MB/s\n", best_wc_c.seconds, mb / best_wc_c.seconds);
  std::printf("  ratio preprocessing / LC_ALL=C wc -w: %.2f (target 0.5)\n", best_pre.seconds / best_wc_c.seconds);
  std::printf("  ratio preprocessing / wc -w (%s): %.2f\n", locale != nullptr ? locale : "default locale",
              best_pre.seconds / best_wc.seconds);

  if (keep) {
    std::printf("kept %s\n", dir.c_str());
  } else {
    std::filesystem::remove_all(dir);
  }
  return 0;
}

}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
