#include "tools/progress_display.h"

#include <gtest/gtest.h>

namespace {

TEST(ProgressDisplayTest, Lines) {
  const struct {
    std::uint64_t read, total;
    double seconds;
    const char* line;
  } cases[] = {
      {0, 0, 0, "reading the dumps: 0% of 0.0 MB"},  // no dumps: nothing to divide by
      {0, 960'000'000, 0.3, "reading the dumps: 0% of 960.0 MB"},
      {1'000, 960'000'000, 0, "reading the dumps: 0% of 960.0 MB"},
      {240'000'000, 960'000'000, 2, "reading the dumps: 25% of 960.0 MB, 120.0 MB/s, 6 s left"},
      {10'000'000, 960'000'000, 1, "reading the dumps: 1% of 960.0 MB, 10.0 MB/s, 1 min 35 s left"},
      {960'000'000, 960'000'000, 3, "read 960.0 MB; writing the data directory"},
      {970'000'000, 960'000'000, 3, "read 960.0 MB; writing the data directory"},  // a dump grew meanwhile
  };
  for (const auto& c : cases) {
    EXPECT_EQ(progress_line(c.read, c.total, c.seconds), c.line) << c.read << " of " << c.total << " in " << c.seconds;
  }
}

}  // namespace
