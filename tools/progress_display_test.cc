#include "tools/progress_display.h"

#include <gtest/gtest.h>

namespace refgrove {

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

TEST(ProgressDisplayTest, LogLinesAtEachTenth) {
  const struct {
    int logged;  // tenths logged before
    std::uint64_t read, total;
    bool due;
    int logged_after;
  } cases[] = {
      {-1, 0, 100, true, 0},     {0, 9, 100, false, 0}, {0, 10, 100, true, 1},
      {1, 19, 100, false, 1},    {1, 55, 100, true, 5}, {5, 100, 100, true, 10},
      {10, 120, 100, false, 10}, {-1, 0, 0, true, 10},  // no dumps: all read at once
  };
  for (const auto& c : cases) {
    int logged = c.logged;
    EXPECT_EQ(log_is_due(c.read, c.total, &logged), c.due) << c.logged << ": " << c.read << " of " << c.total;
    EXPECT_EQ(logged, c.logged_after) << c.logged << ": " << c.read << " of " << c.total;
  }
}

}  // namespace

}  // namespace refgrove
