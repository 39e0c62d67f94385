// Damaged copies of two valid data directories (the sample dumps preprocessed,
// and a small built one): each file missing, cut short at many offsets, and
// with bytes overwritten at random (fixed seed). Each copy is loaded, queried,
// printed and checked: nothing may crash or hang (the asan preset runs this
// too), the check must report every missing or cut file, and where it reports
// nothing the loaded data must answer every title word and author.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/validate.h"
#include "refgrove/query.h"
#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "testing/query_everything.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

constexpr auto kTimePerVariant = std::chrono::seconds(5);
constexpr unsigned kWatchdogSeconds = 60;

// The watchdog's message, naming the variant in progress.
char watchdog_message[320];

void on_watchdog(int) {
  (void)!write(2, watchdog_message, strlen(watchdog_message));
  _exit(1);
}

struct Variant {
  std::string name;
  DataFiles files;
  bool must_be_found;  // the check must report something
};

void add_variants(const std::string& base_name, const DataFiles& clean, std::size_t every_offset_up_to,
                  std::size_t truncations_beyond, int flips_per_file, std::mt19937* rng, std::vector<Variant>* out) {
  for (const char* name : kDataFileNames) {
    const std::string& bytes = clean.at(name);
    const std::string where = base_name + " " + name;
    out->push_back(Variant{where + " missing", clean, true});
    out->back().files.erase(name);
    // Truncation at 0 is the empty file.
    std::vector<std::size_t> cuts;
    for (std::size_t at = 0; at < bytes.size() && at <= every_offset_up_to; ++at) cuts.push_back(at);
    for (std::size_t k = 1; k <= truncations_beyond && every_offset_up_to < bytes.size(); ++k) {
      const std::size_t at = every_offset_up_to + (bytes.size() - every_offset_up_to) * k / (truncations_beyond + 1);
      if (at > cuts.back() && at < bytes.size()) cuts.push_back(at);
    }
    for (const std::size_t at : cuts) {
      out->push_back(Variant{where + " cut at " + std::to_string(at), clean, true});
      out->back().files[name].resize(at);
    }
    for (int i = 0; i < flips_per_file; ++i) {
      out->push_back(Variant{where + " bytes set:", clean, false});
      std::string& b = out->back().files[name];
      const int n = 1 + static_cast<int>((*rng)() % 4);
      for (int j = 0; j < n && !b.empty(); ++j) {
        const std::size_t at = (*rng)() % b.size();
        b[at] = static_cast<char>((*rng)() % 256);
        // Appended piece by piece: GCC 12 warns (-Wrestrict) on `" " + std::to_string(at)` at -O3.
        out->back()
            .name.append(" ")
            .append(std::to_string(at))
            .append("=")
            .append(std::to_string(static_cast<unsigned char>(b[at])));
      }
    }
  }
}

TEST(CorruptedDirectoryTest, LoadsQueriesPrintsAndChecksEveryVariant) {
  std::mt19937 rng(20020801);
  std::vector<Variant> variants;
  {
    TempDir sample;
    preprocess_sample(sample.path());
    add_variants("sample", read_data_files(sample.path()), 48, 60, 150, &rng, &variants);
  }
  {
    TempDir small;
    two_documents().add({9, "", -1, {}, {}, {}, {"one"}, false, true}).write(small.path());
    add_variants("small", read_data_files(small.path()), SIZE_MAX, 0, 50, &rng, &variants);
  }
  ASSERT_GE(variants.size(), 1000u);

  signal(SIGALRM, on_watchdog);
  TempDir dir;
  for (const Variant& v : variants) {
    std::snprintf(watchdog_message, sizeof watchdog_message, "corrupted directory test: no end after %u s on %s\n",
                  kWatchdogSeconds, v.name.c_str());
    alarm(kWatchdogSeconds);
    const auto start = std::chrono::steady_clock::now();
    write_data_files(dir.path(), v.files);
    std::vector<Finding> findings;
    std::string unanswered;
    {
      StreamCapture quiet;
      refgrove_load_1(dir.path().c_str());
      query_everything();
      findings = validate_data_dir(dir.path());
      if (findings.empty()) unanswered = unanswered_items();
    }
    alarm(0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, kTimePerVariant) << v.name;
    EXPECT_TRUE(!v.must_be_found || !findings.empty()) << v.name << ": the check found nothing";
    EXPECT_EQ(unanswered, "") << v.name << ": the check found nothing, yet queries find no text for";
  }
  signal(SIGALRM, SIG_DFL);
  delete refgrove_data;
  refgrove_data = nullptr;
}

}  // namespace

}  // namespace refgrove
