#include "module/predicates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/test_documents.h"
#include "host/host_engine.h"
#include "module/host_terms.h"

// preproc_recorder.cc stands in for preprocessing: it records the
// directories and throws for the input directory "throw/".
std::vector<std::pair<std::string, std::string>>& preproc_calls();

namespace {

using Predicate = int (*)(LumoxMachine*);

// The sample of core/test_documents.h: DID 2 has authors 0, 1, 2 and the
// citations (gid 11, did 4), (gid 12, did 9); DID 4 is graph only, DID 6
// words only, DID 9 has author 2.
class PredicatesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_ = lumox_sim::create_machine();
    sample_documents().write(dir_.path());
    load_quietly(dir_.path());
  }
  void TearDown() override {
    delete refgrove_data;
    refgrove_data = nullptr;
    lumox_sim::destroy_machine(m_);
  }

  // Calls p with the given arguments the way the host does, and checks that
  // it leaves every slot free and has set the global machine.
  int call(Predicate p, const std::vector<term>& args) {
    for (std::size_t k = 0; k < 4; ++k) m_->args[k] = k < args.size() ? args[k] : nil_atom;
    lumox_global_machine = nullptr;
    const int free_before = lumox_sim::free_slot_count(m_);
    const int result = p(m_);
    EXPECT_EQ(lumox_sim::free_slot_count(m_), free_before) << "slots left taken";
    EXPECT_EQ(lumox_global_machine, m_);
    return result;
  }
  term var() { return lumox_sim::new_var(m_); }
  term atom(const char* name) { return lumox_sim::make_atom(name); }
  std::vector<term> with(std::vector<term> inputs, term output) {
    inputs.push_back(output);
    return inputs;
  }

  TempDir dir_;
  LumoxMachine* m_ = nullptr;
};

TEST_F(PredicatesTest, IntegerOutputs) {
  const struct {
    const char* name;
    Predicate p;
    std::vector<term> inputs;
    bool found;
    int value;
  } cases[] = {
      {"last_did", refgrove_last_did, {}, true, 10},
      {"document_count", refgrove_document_count, {}, true, 4},
      {"get_nb_authors", refgrove_get_nb_authors, {}, true, 3},
      {"word_count(2)", refgrove_word_count, {int_term(2)}, true, 12},
      {"word_count(4)", refgrove_word_count, {int_term(4)}, false, 0},
      {"title_length(2)", refgrove_title_length, {int_term(2)}, true, 2},
      {"title_length(6)", refgrove_title_length, {int_term(6)}, false, 0},
      {"author_count(2)", refgrove_author_count, {int_term(2)}, true, 3},
      {"author_count(4)", refgrove_author_count, {int_term(4)}, true, 0},
      {"author_count(6)", refgrove_author_count, {int_term(6)}, false, 0},
      {"cite_count(2)", refgrove_cite_count, {int_term(2)}, true, 2},
      {"get_year(2)", refgrove_get_year, {int_term(2)}, true, 1994},
      {"get_year(4)", refgrove_get_year, {int_term(4)}, true, -1},
      {"get_year(6), words only", refgrove_get_year, {int_term(6)}, false, 0},
      {"get_author_id(2, 1)", refgrove_get_author_id, {int_term(2), int_term(1)}, true, 1},
      {"get_author_id(2, 3)", refgrove_get_author_id, {int_term(2), int_term(3)}, false, 0},
      {"get_author_id(6, 0)", refgrove_get_author_id, {int_term(6), int_term(0)}, false, 0},
  };
  for (const auto& c : cases) {
    const term out = var();
    ASSERT_EQ(call(c.p, with(c.inputs, out)), c.found ? 1 : 0) << c.name << " unbound";
    if (!c.found) {
      EXPECT_TRUE(is_unbound(out)) << c.name;
      continue;
    }
    EXPECT_EQ(deref(out), int_term(c.value)) << c.name;
    EXPECT_EQ(call(c.p, with(c.inputs, int_term(c.value))), 1) << c.name << " bound to the same value";
    EXPECT_EQ(call(c.p, with(c.inputs, int_term(c.value + 1))), 0) << c.name << " bound to another value";
    EXPECT_EQ(call(c.p, with(c.inputs, atom("x"))), 0) << c.name << " bound to an atom";
  }
}

TEST_F(PredicatesTest, AtomOutputs) {
  const struct {
    const char* name;
    Predicate p;
    std::vector<term> inputs;
    const char* text;  // null: fails
  } cases[] = {
      {"get_key(2)", refgrove_get_key, {int_term(2)}, "smith94"},
      {"get_key(4), empty key", refgrove_get_key, {int_term(4)}, ""},
      {"get_key(6)", refgrove_get_key, {int_term(6)}, nullptr},
      {"get_title_word(2, 0)", refgrove_get_title_word, {int_term(2), int_term(0)}, "Graph"},
      {"get_title_word(6, 0)", refgrove_get_title_word, {int_term(6), int_term(0)}, nullptr},
      {"get_word(2, 1)", refgrove_get_word, {int_term(2), int_term(1)}, "study"},
      {"get_word(4, 0)", refgrove_get_word, {int_term(4), int_term(0)}, nullptr},
      {"get_author(2, 1)", refgrove_get_author, {int_term(2), int_term(1)}, "A. B. Jones"},
      {"get_author(4, 0)", refgrove_get_author, {int_term(4), int_term(0)}, nullptr},
      {"id2author(2)", refgrove_id2author, {int_term(2)}, "C. Doe"},
  };
  for (const auto& c : cases) {
    const term out = var();
    ASSERT_EQ(call(c.p, with(c.inputs, out)), c.text ? 1 : 0) << c.name;
    if (c.text == nullptr) {
      EXPECT_TRUE(is_unbound(out)) << c.name;
      continue;
    }
    EXPECT_EQ(deref(out), atom(c.text)) << c.name;
    EXPECT_STREQ(lumox_sim::atom_text(deref(out)), c.text) << c.name;
    EXPECT_EQ(call(c.p, with(c.inputs, atom(c.text))), 1) << c.name << " bound to the same atom";
    EXPECT_EQ(call(c.p, with(c.inputs, atom("other"))), 0) << c.name << " bound to another atom";
    EXPECT_EQ(call(c.p, with(c.inputs, int_term(0))), 0) << c.name << " bound to an integer";
  }
}

TEST_F(PredicatesTest, CitationsBindCitedThenGid) {
  term cited = var(), gid = var();
  ASSERT_EQ(call(refgrove_get_cite, {int_term(2), int_term(1), cited, gid}), 1);
  EXPECT_EQ(deref(cited), int_term(9));
  EXPECT_EQ(deref(gid), int_term(12));
  EXPECT_EQ(call(refgrove_get_cite, {int_term(2), int_term(0), int_term(4), int_term(11)}), 1);
  EXPECT_EQ(call(refgrove_get_cite, {int_term(6), int_term(0), var(), var()}), 0);
  // Gid does not match: Cited was bound first and stays bound.
  cited = var();
  EXPECT_EQ(call(refgrove_get_cite, {int_term(2), int_term(1), cited, int_term(11)}), 0);
  EXPECT_EQ(deref(cited), int_term(9));
}

TEST_F(PredicatesTest, StatsBindInOrderAndStopAtTheFirstMismatch) {
  term d = var(), w = var(), a = var();
  ASSERT_EQ(call(refgrove_stats, {d, w, a}), 1);
  EXPECT_EQ(deref(d), int_term(4));
  EXPECT_EQ(deref(w), int_term(9));
  EXPECT_EQ(deref(a), int_term(3));
  EXPECT_EQ(call(refgrove_stats, {int_term(4), int_term(9), int_term(4)}), 0);
  w = var();
  EXPECT_EQ(call(refgrove_stats, {int_term(5), w, var()}), 0);
  EXPECT_TRUE(is_unbound(w));
}

TEST_F(PredicatesTest, PresenceTests) {
  const struct {
    Predicate p;
    const char* name;
    int did, result;
  } cases[] = {
      {refgrove_has_word_info, "has_word_info", 6, 1},   {refgrove_has_word_info, "has_word_info", 4, 0},
      {refgrove_has_word_info, "has_word_info", 99, 0},  {refgrove_has_graph_info, "has_graph_info", 4, 1},
      {refgrove_has_graph_info, "has_graph_info", 6, 0}, {refgrove_has_graph_info, "has_graph_info", 2, 1},
  };
  for (const auto& c : cases) EXPECT_EQ(call(c.p, {int_term(c.did)}), c.result) << c.name << "(" << c.did << ")";
}

TEST_F(PredicatesTest, AuthorListsHoldTheLastAuthorFirst) {
  const auto list_of = [&](std::vector<term> items) { return lumox_sim::make_list(m_, items, lumox_sim::nil()); };
  const term l2 = var(), l9 = var(), l6 = var();
  ASSERT_EQ(call(refgrove_get_authors, {int_term(2), l2}), 1);
  ASSERT_EQ(call(refgrove_get_authors, {int_term(9), l9}), 1);
  ASSERT_EQ(call(refgrove_get_authors, {int_term(6), l6}), 1);  // no graph record
  EXPECT_TRUE(unify_or_undo(m_, l2, list_of({int_term(2), int_term(1), int_term(0)})));
  EXPECT_TRUE(unify_or_undo(m_, l9, list_of({int_term(2)})));
  EXPECT_EQ(deref(l6), lumox_sim::nil());

  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({int_term(2), int_term(1), int_term(0)})}), 1);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({int_term(0), int_term(1), int_term(2)})}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), lumox_sim::nil()}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(6), lumox_sim::nil()}), 1);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), atom("foo")}), 0);

  // A mismatch after a binding leaves no binding behind.
  const term x = var(), y = var();
  lumox_sim::set_trail_boundary_to_heap_top(m_);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({x, int_term(5), y})}), 0);
  EXPECT_TRUE(is_unbound(x));
}

TEST_F(PredicatesTest, AuthorDistanceIsTheFloatZero) {
  const term d = var();
  ASSERT_EQ(call(refgrove_author_distance, {int_term(1), int_term(2), d}), 1);
  EXPECT_TRUE(is_float_box(deref_keep_box(d)));
  EXPECT_EQ(lumox_sim::float_value(deref_keep_box(d)), 0.0);
  EXPECT_EQ(call(refgrove_author_distance, {int_term(1), int_term(2), lumox_sim::make_float(m_, 0.0)}), 1);
  EXPECT_EQ(call(refgrove_author_distance, {int_term(1), int_term(2), lumox_sim::make_float(m_, 1.5)}), 0);
  EXPECT_EQ(call(refgrove_author_distance, {int_term(1), int_term(2), int_term(0)}), 0);
}

TEST_F(PredicatesTest, IntegerInputsOfTheWrongKindReadAsMinusOne) {
  testing::internal::CaptureStderr();
  const term list = var();
  EXPECT_EQ(call(refgrove_get_year, {atom("abc"), var()}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {var(), list}), 1);  // DID -1: no record
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Term has invalid type!\nTerm has invalid type!\n");
  EXPECT_EQ(deref(list), lumox_sim::nil());
  std::string out;
  testing::internal::CaptureStderr();
  {
    StreamCapture capture;
    EXPECT_EQ(call(refgrove_printdoc, {atom("abc")}), 1);
    out = capture.out();
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Term has invalid type!\n");
  EXPECT_EQ(out, "Document without word-data\nno graph info found \n");
}

TEST_F(PredicatesTest, PathArguments) {
  RefgroveData* const loaded = refgrove_data;
  const struct {
    const char* what;
    Predicate p;
    std::vector<term> args;
    const char* complaint;
  } wrong[] = {
      {"load(123)", refgrove_load, {int_term(123)}, "refgrove_load/1 expects string as second arg\n"},
      {"load(X)", refgrove_load, {var()}, "refgrove_load/1 expects string as second arg\n"},
      {"preproc(1, b)", refgrove_preproc, {int_term(1), atom("b")}, "refgrove_preproc/2 expects string as first arg\n"},
      {"preproc(1, 2)", refgrove_preproc, {int_term(1), int_term(2)}, "refgrove_preproc/2 expects string as first arg\n"},
      {"preproc(a, [])", refgrove_preproc, {atom("a"), lumox_sim::make_list(m_, {int_term(1)}, lumox_sim::nil())},
       "refgrove_preproc/2 expects string as second arg\n"},
  };
  preproc_calls().clear();
  for (const auto& c : wrong) {
    StreamCapture capture;
    EXPECT_EQ(call(c.p, c.args), 0) << c.what;
    EXPECT_EQ(capture.err(), c.complaint) << c.what;
  }
  EXPECT_EQ(refgrove_data, loaded);
  EXPECT_TRUE(preproc_calls().empty());

  EXPECT_EQ(call(refgrove_preproc, {atom("in/"), atom("out dir/")}), 1);
  ASSERT_EQ(preproc_calls().size(), 1u);
  EXPECT_EQ(preproc_calls()[0].first, "in/");
  EXPECT_EQ(preproc_calls()[0].second, "out dir/");

  TempDir other;
  DataDirBuilder().add(TestDocument{}).write(other.path());
  {
    StreamCapture capture;
    EXPECT_EQ(call(refgrove_load, {atom(other.path().c_str())}), 1);
  }
  term n = var();
  EXPECT_EQ(call(refgrove_last_did, {n}), 1);
  EXPECT_EQ(deref(n), int_term(1));
}

TEST_F(PredicatesTest, AnExceptionFromTheCoreReleasesTheSlots) {
  const int free_before = lumox_sim::free_slot_count(m_);
  m_->args[0] = atom("throw/");
  m_->args[1] = atom("out/");
  EXPECT_THROW(refgrove_preproc(m_), std::runtime_error);
  EXPECT_EQ(lumox_sim::free_slot_count(m_), free_before);
}

TEST_F(PredicatesTest, EntryAndHello) {
  const int registered = lumox_sim::call_counts().register_types;
  testing::internal::CaptureStdout();
  EXPECT_EQ(lumox_module_init_appl_refgrove_refgrove(), 1);
  EXPECT_EQ(call(refgrove_hello, {}), 1);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "init_refgrove:\n[]\ninit_refgrove:\n[]\n");
  EXPECT_EQ(lumox_sim::call_counts().register_types, registered + 1);
}

}  // namespace
