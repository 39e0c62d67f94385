#include "module/predicates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host_engine.h"
#include "module/host_terms.h"
#include "testing/test_documents.h"

namespace refgrove {

// preproc_recorder.cc stands in for preprocessing: it records the
// directories and throws for the input directory "throw/".
std::vector<std::pair<std::string, std::string>>& preproc_calls();

namespace {

using Predicate = int (*)(LumoxMachine*);

constexpr term kFails = 0;  // no answer: a reference to address 0 is never one

// The sample of testing/test_documents.h: DID 2 has authors 0, 1, 2 and the
// citations (gid 11, did 4), (gid 12, did 9); DID 4 is graph only, DID 6
// words only, DID 9 has author 2.
class PredicatesTest : public LoadedDataTest {
 protected:
  void SetUp() override {
    m_ = lumox_sim::create_machine();
    load(sample_documents());
  }
  void TearDown() override {
    LoadedDataTest::TearDown();
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
  // The same value of the same kind; floats are compared by value.
  static bool same(term a, term b) {
    a = deref_keep_box(a), b = deref_keep_box(b);
    return is_float_box(a) ? is_float_box(b) && lumox_sim::float_value(a) == lumox_sim::float_value(b) : a == b;
  }
  term atom(const char* name) { return lumox_sim::make_atom(name); }
  // Integer inputs, then the output.
  std::vector<term> with(const std::vector<int>& inputs, term output) {
    std::vector<term> args;
    for (const int v : inputs) args.push_back(int_term(v));
    args.push_back(output);
    return args;
  }

  LumoxMachine* m_ = nullptr;
};

// Every predicate with one output: called with it unbound, then bound to the
// answer (directly and through a reference; nothing may be built for it), to
// another value of its kind and to values of the other kinds.
TEST_F(PredicatesTest, SingleOutputs) {
  const auto n = [](int v) { return int_term(v); };
#define PRED(name) #name, refgrove_##name
  const struct {
    const char* name;
    Predicate p;
    std::vector<int> inputs;
    term answer;
  } cases[] = {
      {PRED(last_did), {}, n(10)},
      {PRED(document_count), {}, n(4)},
      {PRED(get_nb_authors), {}, n(3)},
      {PRED(word_count), {2}, n(12)},
      {PRED(word_count), {4}, kFails},
      {PRED(cite_count), {2}, n(2)},
      {PRED(title_length), {2}, n(2)},
      {PRED(title_length), {6}, kFails},
      {PRED(title_length), {9}, n(1)},  // DID 9 has no citation: tells title_length from cite_count
      {PRED(author_count), {2}, n(3)},
      {PRED(author_count), {4}, n(0)},
      {PRED(author_count), {6}, kFails},
      {PRED(get_year), {2}, n(1994)},
      {PRED(get_year), {4}, n(-1)},
      {PRED(get_year), {6}, kFails},
      {PRED(get_author_id), {2, 1}, n(1)},
      {PRED(get_author_id), {2, 3}, kFails},
      {PRED(get_author_id), {6, 0}, kFails},
      {PRED(get_key), {2}, atom("smith94")},
      {PRED(get_key), {4}, atom("")},
      {PRED(get_key), {6}, kFails},
      {PRED(get_title_word), {2, 0}, atom("Graph")},
      {PRED(get_title_word), {6, 0}, kFails},
      {PRED(get_word), {2, 1}, atom("study")},
      {PRED(get_word), {4, 0}, kFails},
      {PRED(get_author), {2, 1}, atom("A. B. Jones")},
      {PRED(get_author), {4, 0}, kFails},
      {PRED(id2author), {2}, atom("C. Doe")},
      {PRED(author_distance), {1, 2}, lumox_sim::make_float(m_, 0.0)},
      {PRED(author_distance), {1, 2}, lumox_sim::make_float(m_, -0.0)},  // equal to 0.0
  };
#undef PRED
  for (const auto& c : cases) {
    const std::string what = c.name + testing::PrintToString(c.inputs);
    const term out = var();
    ASSERT_EQ(call(c.p, with(c.inputs, out)), c.answer != kFails) << what << " unbound";
    if (c.answer == kFails) {
      EXPECT_TRUE(is_unbound(out)) << what;
      continue;
    }
    EXPECT_TRUE(same(out, c.answer)) << what;
    term* const top = m_->heap_top;
    EXPECT_EQ(call(c.p, with(c.inputs, out)), 1) << what << " bound through a reference";
    EXPECT_EQ(call(c.p, with(c.inputs, c.answer)), 1) << what << " bound to the answer";
    EXPECT_EQ(m_->heap_top, top) << what;
    // Another value of the answer's kind, then values of the other kinds; an
    // integer and an atom with the same number differ only in their tag.
    const bool number = is_int(c.answer), real = is_float_box(c.answer);
    const term f = lumox_sim::make_float(m_, real ? 1.5 : 0.0);
    const term twin = number ? atom_term(static_cast<std::uint32_t>(int_value(c.answer)))
                             : int_term(real ? 0 : static_cast<std::int32_t>(atom_index(c.answer)));
    const term other = number ? int_term(int_value(c.answer) + 1) : real ? f : atom("o");
    for (const term t : {other, twin, real ? atom("x") : f}) {
      const char* const which = t == other ? "another value" : "another kind";
      EXPECT_EQ(call(c.p, with(c.inputs, t)), 0) << what << " bound to " << which;
    }
  }
}

TEST_F(PredicatesTest, PresenceTests) {
  for (const int did : {2, 4, 6, 99}) {
    EXPECT_EQ(call(refgrove_has_word_info, {int_term(did)}), did == 2 || did == 6) << "has_word_info(" << did << ")";
    EXPECT_EQ(call(refgrove_has_graph_info, {int_term(did)}), did == 2 || did == 4) << "has_graph_info(" << did << ")";
  }
}

// get_cite binds Cited before Gid, stats its outputs in order; the first
// mismatch fails the call and leaves what was bound before it.
TEST_F(PredicatesTest, SeveralOutputsBindInOrder) {
  const term cited = var(), gid = var();
  EXPECT_EQ(call(refgrove_get_cite, {int_term(2), int_term(0), int_term(4), int_term(11)}), 1);
  EXPECT_EQ(call(refgrove_get_cite, {int_term(6), int_term(0), var(), var()}), 0);
  EXPECT_EQ(call(refgrove_get_cite, {int_term(2), int_term(1), cited, int_term(11)}), 0);
  EXPECT_EQ(deref(cited), int_term(9));
  ASSERT_EQ(call(refgrove_get_cite, {int_term(2), int_term(1), cited, gid}), 1);
  EXPECT_EQ(deref(gid), int_term(12));

  const term d = var(), w = var(), a = var();
  EXPECT_EQ(call(refgrove_stats, {int_term(5), w, var()}), 0);
  EXPECT_TRUE(is_unbound(w));
  EXPECT_EQ(call(refgrove_stats, {int_term(4), int_term(9), int_term(4)}), 0);
  ASSERT_EQ(call(refgrove_stats, {d, w, a}), 1);
  EXPECT_EQ(deref(d), int_term(4));
  EXPECT_EQ(deref(w), int_term(9));
  EXPECT_EQ(deref(a), int_term(3));
}

TEST_F(PredicatesTest, AuthorListsHoldTheLastAuthorFirst) {
  const auto list_of = [&](std::vector<term> items) { return lumox_sim::make_list(m_, items, lumox_sim::nil()); };
  const term l2 = var(), l9 = var(), l6 = var();
  ASSERT_EQ(call(refgrove_get_authors, {int_term(2), l2}), 1);
  ASSERT_EQ(call(refgrove_get_authors, {int_term(9), l9}), 1);
  ASSERT_EQ(call(refgrove_get_authors, {int_term(6), l6}), 1);  // no graph record
  EXPECT_TRUE(is_list(deref(l2)));
  EXPECT_TRUE(unify_or_undo(m_, l2, list_of({int_term(2), int_term(1), int_term(0)})));
  EXPECT_TRUE(unify_or_undo(m_, l9, list_of({int_term(2)})));
  EXPECT_EQ(deref(l6), lumox_sim::nil());

  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({int_term(2), int_term(1), int_term(0)})}), 1);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({int_term(0), int_term(1), int_term(2)})}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), lumox_sim::nil()}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(6), lumox_sim::nil()}), 1);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), atom("foo")}), 0);

  // A mismatch after a binding leaves no binding, and no trail entry, behind.
  const term x = var(), y = var();
  lumox_sim::set_trail_boundary_to_heap_top(m_);
  const int mark = trail_mark(m_);
  EXPECT_EQ(call(refgrove_get_authors, {int_term(2), list_of({x, int_term(5), y})}), 0);
  EXPECT_TRUE(is_unbound(x));
  EXPECT_EQ(trail_mark(m_), mark);
}

// A wrong-kind integer input is reported and read as -1, which no document has.
TEST_F(PredicatesTest, IntegerInputsOfTheWrongKindReadAsMinusOne) {
  const term list = var();
  StreamCapture capture;
  testing::internal::CaptureStderr();
  EXPECT_EQ(call(refgrove_get_year, {atom("abc"), var()}), 0);
  EXPECT_EQ(call(refgrove_get_authors, {var(), list}), 1);
  EXPECT_EQ(call(refgrove_printdoc, {atom("abc")}), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Term has invalid type!\nTerm has invalid type!\nTerm has invalid type!\n");
  EXPECT_EQ(deref(list), lumox_sim::nil());
  EXPECT_EQ(capture.out(), "Document without word-data\nno graph info found \n");
}

// A path that is not an atom fails the call with the message of the first
// such argument, and nothing is loaded or preprocessed.
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
      {"preproc(1, 2)",
       refgrove_preproc,
       {int_term(1), int_term(2)},
       "refgrove_preproc/2 expects string as first arg\n"},
      {"preproc(a, [1])",
       refgrove_preproc,
       {atom("a"), lumox_sim::make_list(m_, {int_term(1)}, lumox_sim::nil())},
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
  EXPECT_EQ(preproc_calls(), (std::vector<std::pair<std::string, std::string>>{{"in/", "out dir/"}}));
  TempDir other;
  DataDirBuilder().add(TestDocument{}).write(other.path());
  {
    StreamCapture capture;
    EXPECT_EQ(call(refgrove_load, {atom(other.path().c_str())}), 1);
  }
  EXPECT_EQ(call(refgrove_last_did, {int_term(1)}), 1);
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

}  // namespace refgrove
