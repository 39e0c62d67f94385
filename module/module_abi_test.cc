// Loads refgrove.so the way a host program does, with dlopen, and checks that
// it exports its C interface and nothing else.
#include <dlfcn.h>
#include <stdio.h>

#include <gtest/gtest.h>

#include <string>

#include "core/predicate_table.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

class ModuleTest : public ::testing::Test {
 protected:
  // Never closed: like a host engine, the test keeps the module (and the
  // data set it holds) until the process ends.
  void SetUp() override {
    handle_ = dlopen(REFGROVE_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
  }
  template <class F>
  F* fn(const std::string& name) {
    void* sym = dlsym(handle_, name.c_str());
    EXPECT_NE(sym, nullptr) << name;
    return reinterpret_cast<F*>(sym);
  }
  void* handle_ = nullptr;
};

TEST_F(ModuleTest, ExportsItsCInterfaceAndNothingElse) {
  FILE* nm = popen("nm -D --defined-only " REFGROVE_MODULE_PATH, "r");
  ASSERT_NE(nm, nullptr);
  int exported = 0;
  char line[512];
  for (; fgets(line, sizeof line, nm) != nullptr; ++exported) {
    std::string name(line);
    name = name.substr(name.find_last_of(' ') + 1);
    name.pop_back();  // the line end
    EXPECT_TRUE(name.rfind("refgrove_", 0) == 0 || name.rfind("lumox_", 0) == 0 || name == "init_refgrove") << name;
  }
  pclose(nm);
  EXPECT_GT(exported, 0);
  fn<void>("refgrove_data");
  for (const char* op : {"load",
                         "preproc",
                         "last_did",
                         "has_graph_info",
                         "has_word_info",
                         "get_key",
                         "get_year",
                         "cite_count",
                         "get_cite",
                         "title_length",
                         "get_title_word",
                         "author_count",
                         "get_author_id",
                         "get_author",
                         "get_authors",
                         "word_count",
                         "get_word",
                         "id2author",
                         "get_nb_authors",
                         "stats",
                         "author_distance",
                         "printdoc",
                         "print_author",
                         "abstract_length",
                         "get_abstract_word",
                         "cited_by_count",
                         "get_cited_by",
                         "author_doc_count",
                         "get_author_doc",
                         "key_doc_count",
                         "get_key_doc",
                         "author_named_count",
                         "get_author_named",
                         "author_prefix_count",
                         "get_author_prefix",
                         "citation_count",
                         "pagerank",
                         "ranked",
                         "collaboration_distance",
                         "collaboration_path",
                         "citation_distance",
                         "neighbourhood",
                         "neighbourhood_edges",
                         "similar",
                         "component_count",
                         "author_component_count",
                         "component",
                         "author_component"}) {
    fn<void>("refgrove_" + std::string(op) + "_1");
  }
}

#ifdef REFGROVE_HOST_BINDING
// A predicate of the table that the binding does not define is declared
// all the same, and missing only here.
TEST_F(ModuleTest, ExportsEveryPredicateOfTheTable) {
#define REFGROVE_EXPECT_EXPORTED(name, arity, ...) EXPECT_NE(dlsym(handle_, #name), nullptr) << #name "/" #arity;
  REFGROVE_HOST_PREDICATES(REFGROVE_EXPECT_EXPORTED)
#undef REFGROVE_EXPECT_EXPORTED
}
#endif

// One call through each C signature of the interface, answered from the
// data set the module loaded (the values themselves are the core's tests).
TEST_F(ModuleTest, EachCallShapeAnswers) {
  TempDir dir;
  sample_documents().write(dir.path());
  {
    StreamCapture capture;
    fn<void(const char*)>("refgrove_load_1")(dir.path().c_str());
  }
  EXPECT_NE(*fn<void*>("refgrove_data"), nullptr);
  int n = 0, a = 0, b = 0;
  const char* text = nullptr;
  fn<void(int*)>("refgrove_last_did_1")(&n);
  EXPECT_EQ(n, 10);
  EXPECT_EQ(fn<int(int)>("refgrove_has_graph_info_1")(4), 1);
  EXPECT_EQ(fn<int(int, const char**)>("refgrove_get_key_1")(2, &text), 1);
  EXPECT_STREQ(text, "smith94");
  EXPECT_EQ(fn<int(int, int*)>("refgrove_get_year_1")(2, &n), 1);
  EXPECT_EQ(n, 1994);
  EXPECT_EQ(fn<int(int, int, int*, int*)>("refgrove_get_cite_1")(2, 1, &a, &b), 1);
  EXPECT_EQ(a * 100 + b, 912);
  EXPECT_EQ(fn<int(int, int, const char**)>("refgrove_get_author_1")(2, 1, &text), 1);
  EXPECT_STREQ(text, "A. B. Jones");
  int ids[3] = {};
  fn<void(int, int*)>("refgrove_get_authors_1")(2, ids);
  EXPECT_EQ(ids[2], 2);
  EXPECT_EQ(fn<int()>("refgrove_get_nb_authors_1")(), 3);
  fn<void(int*, int*, int*)>("refgrove_stats_1")(&n, &a, &b);
  EXPECT_EQ(n * 10000 + a * 100 + b, 40903);
  EXPECT_EQ(fn<double(int, int)>("refgrove_author_distance_1")(1, 2), 0.0);
  EXPECT_EQ(fn<int(int, int, int*)>("refgrove_get_cited_by_1")(9, 0, &n), 1);
  EXPECT_EQ(n, 2);
  EXPECT_EQ(fn<int(const char*, int, int*)>("refgrove_get_key_doc_1")("doe01", 0, &n), 1);
  EXPECT_EQ(n, 9);
  EXPECT_EQ(fn<int(const char*, int, int*)>("refgrove_get_author_named_1")("j. SMITH", 0, &n), 1);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(fn<int(int, int, const char**)>("refgrove_get_abstract_word_1")(9, 1, &text), 1);
  EXPECT_STREQ(text, "walks");
  testing::internal::CaptureStdout();
  fn<void(int)>("refgrove_print_author_1")(0);
  fn<void(int)>("refgrove_printdoc_1")(3);
  fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "J. SmithDocument without word-data\nno graph info found \n");
}

}  // namespace

}  // namespace refgrove
