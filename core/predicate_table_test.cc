// The lists of the predicates kept outside C++ name every predicate of the
// table: the SWI-Prolog library's export list and the host binding's page.
#include "core/predicate_table.h"

#include <gtest/gtest.h>

#include <fstream>
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
#define REFGROVE_EXPECT_LISTED(name, arity) \
  EXPECT_NE(names.find(#name "/" #arity), std::string::npos) << list.file << " does not list " #name "/" #arity;
    REFGROVE_HOST_PREDICATES(REFGROVE_EXPECT_LISTED)
#undef REFGROVE_EXPECT_LISTED
  }
}

}  // namespace

}  // namespace refgrove
