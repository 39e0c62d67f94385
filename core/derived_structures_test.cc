#include "core/derived_structures.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace refgrove {

namespace {

struct Squares {
  std::vector<int> values;
};
struct Label {
  int value;
};

TEST(DerivedStructures, BuildsEachTypeOnceForAllThreads) {
  DerivedStructures derived;
  std::atomic<int> builds{0};
  std::vector<std::thread> threads;
  std::vector<const Squares*> seen(8);
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      seen[t] = &derived.get<Squares>([&] {
        ++builds;
        return Squares{{0, 1, 4, 9}};
      });
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(builds, 1);
  for (const Squares* s : seen) EXPECT_EQ(s, seen[0]);
  EXPECT_EQ(seen[0]->values[3], 9);
  // Another type is another structure, and does not disturb the first.
  EXPECT_EQ(derived.get<Label>([] { return Label{7}; }).value, 7);
  EXPECT_EQ(&derived.get<Squares>([]() -> Squares { throw std::logic_error("built twice"); }), seen[0]);
}

TEST(DerivedStructures, AFailedBuildIsTriedAgain) {
  DerivedStructures derived;
  EXPECT_THROW(derived.get<Label>([]() -> Label { throw std::runtime_error("no memory"); }), std::runtime_error);
  EXPECT_EQ(derived.get<Label>([] { return Label{3}; }).value, 3);
}

}  // namespace

}  // namespace refgrove
