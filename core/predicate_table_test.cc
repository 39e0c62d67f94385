// The predicate table: the lists kept outside C++ (the SWI-Prolog library's
// export list, the host binding's page) name every predicate of it, and its
// columns are consistent.
#include "core/predicate_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace refgrove {

namespace {

std::string read_source_file(const std::string& name) {
  std::ifstream in(REFGROVE_SOURCE_DIR + name);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The part of `text` from `from` up to the first `to` after it.
std::string between(const std::string& text, const std::string& from, const std::string& to) {
  const std::size_t start = text.find(from);
  if (start == std::string::npos) return "";
  return text.substr(start, text.find(to, start) - start);
}

TEST(PredicateTable, EveryListNamesEveryPredicate) {
  struct List {
    const char* file;
    const char* from;
    const char* to;
  };
  const List lists[] = {
      {"swipl/prolog/refgrove.pl", ":- module(refgrove,", "])."},
      {"docs/host.md", "foreign predicates, exported", "\n- "},
  };
  for (const List& list : lists) {
    const std::string names = between(read_source_file(list.file), list.from, list.to);
    ASSERT_FALSE(names.empty()) << list.file << ": no list after \"" << list.from << "\"";
#define REFGROVE_EXPECT_LISTED(name, arity, ...) \
  EXPECT_NE(names.find(#name "/" #arity), std::string::npos) << list.file << " does not list " #name "/" #arity;
    REFGROVE_HOST_PREDICATES(REFGROVE_EXPECT_LISTED)
#undef REFGROVE_EXPECT_LISTED
  }
}

// The faces key their code by a predicate's name, its operation and its
// query name: a name given twice would hide a predicate, an operation that
// the data set does not offer would not link, a kind out of place would
// derive wrong glue.
TEST(PredicateTable, NamesAreDistinctAndKindsInPlace) {
  std::set<std::string_view> names, queries;
  for (const PredicateInfo& p : kPredicateTable) {
    EXPECT_TRUE(names.insert(p.name).second) << p.name << " given twice";
    if (!p.query.empty()) {
      EXPECT_TRUE(queries.insert(p.query).second) << p.query << " given twice";
    }
    EXPECT_TRUE(p.name.starts_with("refgrove_")) << p.name;
    EXPECT_EQ(p.args().size(), static_cast<std::size_t>(p.arity)) << p.name;
    // A path is only ever an input, and the paths come first.
    bool past_paths = false;
    for (const PredicateArg kind : p.args()) {
      if (kind != PredicateArg::path) past_paths = true;
      EXPECT_FALSE(past_paths && kind == PredicateArg::path) << p.name << ": a path after another argument";
    }
  }
  EXPECT_EQ(names.size(), std::size(kPredicateTable));
}

}  // namespace

}  // namespace refgrove
