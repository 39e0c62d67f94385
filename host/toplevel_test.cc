#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "core/test_documents.h"
#include "host/host_engine.h"
#include "host/term_text.h"
#include "testing/child_process.h"

namespace {

class TermTextTest : public ::testing::Test {
 protected:
  void SetUp() override { m_ = lumox_sim::create_machine(); }
  void TearDown() override { lumox_sim::destroy_machine(m_); }
  LumoxMachine* m_ = nullptr;
};

TEST_F(TermTextTest, GoalsParseAndPrintBack) {
  const struct {
    const char* goal;
    const char* args;  // the arguments as written back, joined by " ; "
  } cases[] = {
      {"p(1, -2, 0, 134217727)", "1 ; -2 ; 0 ; 134217727"},
      {"p(3.5, -0.25, 2.0e3, 1.0E-2)", "3.5 ; -0.25 ; 2000.0 ; 0.01"},
      {"p(abc, 'A. B. Jones', 'don''t', 'a\\\\b\\n')", "abc ; 'A. B. Jones' ; 'don\\'t' ; 'a\\\\b\\n'"},
      {"p([], '[]', [1, 2, 3], [1|[2]])", "[] ; [] ; [1, 2, 3] ; [1, 2]"},
      {"p( x1, 'Upper', '' ) .", "x1 ; 'Upper' ; ''"},
      {"p", ""},
  };
  for (const auto& c : cases) {
    toplevel::Query q;
    ASSERT_NO_THROW(q = toplevel::parse_query(m_, c.goal)) << c.goal;
    ASSERT_EQ(q.calls.size(), 1u) << c.goal;
    EXPECT_EQ(q.calls[0].name, "p") << c.goal;
    std::string args;
    for (const term t : q.calls[0].args) args += (args.empty() ? "" : " ; ") + toplevel::format_term(t);
    EXPECT_EQ(args, c.args) << c.goal;
  }
}

TEST_F(TermTextTest, VariablesAreSharedByNameExceptTheAnonymousOne) {
  const toplevel::Query q = toplevel::parse_query(m_, "p(X, _, Y), 'q r'(X, _, [Y|T])");
  ASSERT_EQ(q.calls.size(), 2u);
  EXPECT_EQ(q.calls[1].name, "q r");
  EXPECT_EQ(q.calls[0].args[0], q.calls[1].args[0]);
  EXPECT_NE(q.calls[0].args[1], q.calls[1].args[1]);
  ASSERT_EQ(q.variables.size(), 3u);  // X, Y, T
  EXPECT_EQ(q.variables[2].first, "T");
  EXPECT_EQ(toplevel::format_answer(q), "true.");
  ASSERT_TRUE(unify_terms_always_trail(q.calls[0].args[0], int_term(4), m_));
  ASSERT_TRUE(unify_terms_always_trail(q.calls[0].args[2], lumox_sim::make_atom("J. Smith"), m_));
  EXPECT_EQ(toplevel::format_answer(q), "X = 4,\nY = 'J. Smith'.");
}

TEST_F(TermTextTest, SyntaxErrors) {
  for (const char* goal : {"", "p(", "p(1 2)", "P(x)", "p(f(x))", "p('abc)", "p(134217728)", "p(12a)", "p(1), ",
                           "p(1) q", "p([1, 2)", "p('\\q')", "p(-)"}) {
    EXPECT_THROW(toplevel::parse_query(m_, goal), toplevel::SyntaxError) << goal;
  }
}

TEST(GoalReader, CutsAtFullStopsOutsideQuotes) {
  std::istringstream in(
      "a. b(1.5).\n% a comment. with full stops.\n 'x. y'(1).  c(X),\n d(X)\n. e('it''s. ok') . tail");
  toplevel::GoalReader reader(in);
  std::vector<std::string> goals;
  std::string goal;
  while (reader.next(&goal)) goals.push_back(goal);
  const std::vector<std::string> expected = {"a", "b(1.5)", "'x. y'(1)", "c(X),\n d(X)", "e('it''s. ok')", "tail"};
  EXPECT_EQ(goals, expected);
}

// ---- The refgrove-host program --------------------------------------------

// Runs refgrove-host on the module with `args`, `input` on its standard input.
ChildResult run_host(std::vector<std::string> args, const std::string& input = "") {
  TempDir tmp;
  write_file(tmp.path() + "in", input);
  args.insert(args.begin(), {REFGROVE_HOST_PATH, "--module", REFGROVE_MODULE_PATH});
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  return run_in_child([&] {
    if (std::freopen((tmp.path() + "in").c_str(), "r", stdin) != nullptr) execv(argv[0], argv.data());
    _exit(127);
  });
}

TEST(RefgroveHost, AnswersGoalsFromArgumentsAndStandardInput) {
  TempDir data;
  sample_documents().write(data.path());
  const std::string load = "refgrove_load('" + data.path() + "')";
  const ChildResult r =
      run_host({load, "refgrove_get_authors(2, L), refgrove_author_distance(1, 2, D)", "refgrove_get_cite(2, 1, C, _)",
                "refgrove_print_author(2)", "refgrove_load(123)", "refgrove_has_word_info(x)", "nosuch(1)",
                "refgrove_stats(D, W, A). halt. refgrove_hello"});
  EXPECT_EQ(r.status, 1);  // nosuch/1 is an error
  EXPECT_EQ(r.out,
            "init_refgrove:\n[]\n"
            "?- " + load + ".\ntrue.\n"
            "?- refgrove_get_authors(2, L), refgrove_author_distance(1, 2, D).\nL = [2, 1, 0],\nD = 0.0.\n"
            "?- refgrove_get_cite(2, 1, C, _).\nC = 9.\n"
            "?- refgrove_print_author(2).\nC. Doetrue.\n"
            "?- refgrove_load(123).\nfalse.\n"
            "?- refgrove_has_word_info(x).\nfalse.\n"
            "?- nosuch(1).\n"
            "?- refgrove_stats(D, W, A).\nD = 4,\nW = 9,\nA = 3.\n"
            "?- halt.\n");
  // The messages of the load come first.
  EXPECT_TRUE(r.err.ends_with("\nrefgrove_load/1 expects string as second arg\nTerm has invalid type!\n"
                              "ERROR: unknown procedure nosuch/1\n"))
      << r.err;

  const ChildResult piped =
      run_host({}, load + ".\nrefgrove_last_did(N).\nrefgrove_get_word(2, 0, W),\n  refgrove_get_word(2, 1, V).\n");
  EXPECT_EQ(piped.status, 0);
  EXPECT_EQ(piped.out,
            "init_refgrove:\n[]\n?- " + load + ".\ntrue.\n?- refgrove_last_did(N).\nN = 10.\n"
            "?- refgrove_get_word(2, 0, W),\n  refgrove_get_word(2, 1, V).\nW = we,\nV = study.\n");
}

TEST(RefgroveHost, HelpAndBadModule) {
  const ChildResult help = run_host({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage: refgrove-host"), std::string::npos);
  const ChildResult bad = run_host({"--module", "/nonexistent/refgrove.so", "true"});
  EXPECT_EQ(bad.status, 2);
  EXPECT_NE(bad.err.find("cannot load the module"), std::string::npos) << bad.err;
}

// The road a user takes: preprocess the repository's sample dumps, load the
// result, ask questions, print a document.
TEST(RefgroveHost, SampleFromDumpsToAnswers) {
  const std::string in = REFGROVE_SAMPLE_DIR;
  TempDir data;
  const std::string preproc = "refgrove_preproc('" + in + "', '" + data.path() + "')";
  const std::string load = "refgrove_load('" + data.path() + "')";
  const ChildResult r = run_host({preproc, load, "refgrove_document_count(N), refgrove_get_nb_authors(A)",
                                  "refgrove_get_authors(102, L), refgrove_get_author(102, 1, Name)",
                                  "refgrove_title_length(102, N), refgrove_get_title_word(102, 2, W)",
                                  "refgrove_get_cite(107, 0, Cited, Gid)", "refgrove_get_year(999, Y)",
                                  "refgrove_printdoc(102)"});
  EXPECT_EQ(r.status, 0) << r.err;
  std::string reading;
  for (const char* f : {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"}) {
    reading += "  - Reading " + in + f + "\n\n";
  }
  EXPECT_EQ(r.out,
            "init_refgrove:\n[]\n"
            "?- " + preproc + ".\n"
            "Preproc word data ... \n1. Reading words ... \n" + reading +
            "2. Finalizing word-idx\n3. Preproc author\npreprocGraph() ...\n4. Writing word-table\n"
            "Done Preproc Word.\ntrue.\n"
            "?- " + load + ".\ntrue.\n"
            "?- refgrove_document_count(N), refgrove_get_nb_authors(A).\nN = 33,\nA = 21.\n"
            "?- refgrove_get_authors(102, L), refgrove_get_author(102, 1, Name).\n"
            "L = [2, 1],\nName = 'D. D. Sleator'.\n"
            "?- refgrove_title_length(102, N), refgrove_get_title_word(102, 2, W).\nN = 5,\nW = for.\n"
            "?- refgrove_get_cite(107, 0, Cited, Gid).\nCited = 101,\nGid = 9101.\n"
            "?- refgrove_get_year(999, Y).\nfalse.\n"
            "?- refgrove_printdoc(102).\n"
            "Document 1 - DID=102 - # words=87\n# Authors = 2\nR. E. Tarjan and D. D. Sleator\n"
            "title: abstract:\n"
            "show cuts within 10 % of the best known . Linear probing is analysed under the uniform hashing "
            "model ; the expected cost of a successful search is ( 1 + 1 / ( 1 - a ) ) / 2 for load factor a . "
            "Suffix arrays answer substring queries in time proportional to the pattern length plus a "
            "logarithmic term . We show how to build them in linear space and compare with suffix trees . "
            "Prefix sums are a basic building block of parallel \n"
            "true.\n");
  // The title words of a printed document go to standard error.
  EXPECT_NE(r.err.find("\nData Structures for Dynamic Trees \n"), std::string::npos) << r.err;
}

}  // namespace
