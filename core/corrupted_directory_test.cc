// Damaged data directories: from two valid ones (the sample dumps
// preprocessed, and a two-document directory), each of the four files
// missing, empty, truncated at many offsets, and with bytes overwritten at
// random (fixed seed). Every variant is loaded, queried on every DID and on
// arguments outside the data, printed and checked. Nothing may crash, hang
// or touch memory it should not (the asan preset runs this too); the check
// must find every missing, empty or truncated file; and where it finds
// nothing, the loaded data must answer every title word and author.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/refgrove.h"
#include "core/test_documents.h"
#include "core/validate.h"
#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "testing/query_everything.h"

namespace {

constexpr auto kTimePerVariant = std::chrono::seconds(5);
constexpr unsigned kWatchdogSeconds = 60;

// The variant in progress, for the watchdog's message.
char current_variant[256];

void on_watchdog(int) {
  const char prefix[] = "corrupted directory test: no end after 60 s on variant ";
  (void)!write(2, prefix, sizeof prefix - 1);
  (void)!write(2, current_variant, strlen(current_variant));
  (void)!write(2, "\n", 1);
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
    DataFiles missing = clean;
    missing.erase(name);
    out->push_back(Variant{where + " missing", missing, true});
    // Truncation at 0 is the empty file.
    std::vector<std::size_t> cuts;
    for (std::size_t at = 0; at < bytes.size() && at <= every_offset_up_to; ++at) cuts.push_back(at);
    for (std::size_t k = 1; k <= truncations_beyond && every_offset_up_to < bytes.size(); ++k) {
      const std::size_t at = every_offset_up_to + (bytes.size() - every_offset_up_to) * k / (truncations_beyond + 1);
      if (at > cuts.back() && at < bytes.size()) cuts.push_back(at);
    }
    for (const std::size_t at : cuts) {
      DataFiles cut = clean;
      cut[name].resize(at);
      out->push_back(Variant{where + " cut at " + std::to_string(at), cut, true});
    }
    for (int i = 0; i < flips_per_file; ++i) {
      DataFiles flipped = clean;
      std::string& b = flipped[name];
      std::string what = where + " bytes set:";
      const int n = 1 + static_cast<int>((*rng)() % 4);
      for (int j = 0; j < n && !b.empty(); ++j) {
        const std::size_t at = (*rng)() % b.size();
        b[at] = static_cast<char>((*rng)() % 256);
        what += " " + std::to_string(at) + "=" + std::to_string(static_cast<unsigned char>(b[at]));
      }
      out->push_back(Variant{what, flipped, false});
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
    TestDocument c;
    c.did = 9;
    c.in_graph = false;
    c.words = {"one"};
    two_documents().add(c).write(small.path());
    add_variants("small", read_data_files(small.path()), SIZE_MAX, 0, 50, &rng, &variants);
  }
  ASSERT_GE(variants.size(), 1000u);

  signal(SIGALRM, on_watchdog);
  TempDir dir;
  int found = 0;
  for (const Variant& v : variants) {
    std::snprintf(current_variant, sizeof current_variant, "%s", v.name.c_str());
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
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LT(elapsed, kTimePerVariant) << v.name;
    if (v.must_be_found) {
      EXPECT_FALSE(findings.empty()) << v.name << ": the check found nothing";
    }
    EXPECT_EQ(unanswered, "") << v.name << ": the check found nothing, yet queries find no text for";
    found += !findings.empty();
  }
  signal(SIGALRM, SIG_DFL);
  delete refgrove_data;
  refgrove_data = nullptr;
  std::printf("%zu variants, %d with findings\n", variants.size(), found);
}

}  // namespace
