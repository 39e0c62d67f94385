#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "host/host_engine.h"
#include "host/term_text.h"
#include "testing/child_process.h"
#include "testing/test_documents.h"

namespace refgrove {

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

// A list of n small integers ("[0, 0, ...]") and n lists nested in each other.
std::string long_list(std::size_t n) {
  std::string s = "[";
  for (std::size_t k = 0; k < n; ++k) s += k ? ", 0" : "0";
  return s + "]";
}
std::string nested_list(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST_F(TermTextTest, GoalsBeyondTheMachinesLimitsAreRefused) {
  const std::size_t max_items = lumox_sim::goal_heap_words(m_) / 2;  // two heap words per list cell
  const struct {
    std::string name, goal;
    const char* error;  // a part of the HostLimitError's message, or "" when the goal fits
  } cases[] = {
      {"fills the goal's heap", "p(" + long_list(max_items) + ")", ""},
      {"one cell too many", "p(" + long_list(max_items + 1) + ")", "do not fit in the heap"},
      {"600,000 elements", "p(" + long_list(600000) + ")", "do not fit in the heap"},
      {"too many lists together", "p(" + long_list(max_items / 2) + ", " + long_list(max_items / 2 + 1) + ")",
       "do not fit in the heap"},
      {"nested to the limit", "p(" + nested_list(10000) + ")", ""},
      {"one level deeper", "p(" + nested_list(10001) + ")", "nested deeper than 10000 levels at column 10003"},
      {"nested 100,000 deep", "p(" + nested_list(100000) + ")", "nested deeper than 10000 levels"},
  };
  for (const auto& c : cases) {
    lumox_sim::reset(m_);
    std::string error;
    try {
      toplevel::parse_query(m_, c.goal);
    } catch (const lumox_sim::HostLimitError& e) {
      error = e.what();
    }
    if (*c.error == '\0') {
      EXPECT_EQ(error, "") << c.name;
    } else {
      EXPECT_NE(error.find(c.error), std::string::npos) << c.name << ": " << error;
    }
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
            "?- " +
                load +
                ".\ntrue.\n"
                "?- refgrove_get_authors(2, L), refgrove_author_distance(1, 2, D).\nL = [2, 1, 0],\nD = 0.0.\n"
                "?- refgrove_get_cite(2, 1, C, _).\nC = 9.\n"
                "?- refgrove_print_author(2).\nC. Doetrue.\n"
                "?- refgrove_load(123).\nfalse.\n"
                "?- refgrove_has_word_info(x).\nfalse.\n"
                "?- nosuch(1).\n"
                "?- refgrove_stats(D, W, A).\nD = 4,\nW = 9,\nA = 3.\n"
                "?- halt.\n");
  // The messages of the load come first.
  EXPECT_TRUE(
      r.err.ends_with("\nrefgrove_load/1 expects string as second arg\nTerm has invalid type!\n"
                      "ERROR: unknown procedure nosuch/1\n"))
      << r.err;

  const ChildResult piped =
      run_host({}, load + ".\nrefgrove_last_did(N).\nrefgrove_get_word(2, 0, W),\n  refgrove_get_word(2, 1, V).\n");
  EXPECT_EQ(piped.status, 0);
  EXPECT_EQ(piped.out, "init_refgrove:\n[]\n?- " + load +
                           ".\ntrue.\n?- refgrove_last_did(N).\nN = 10.\n"
                           "?- refgrove_get_word(2, 0, W),\n  refgrove_get_word(2, 1, V).\nW = we,\nV = study.\n");
}

TEST(RefgroveHost, ReportsGoalsBeyondItsLimitsAndCarriesOn) {
  const ChildResult r = run_host({}, "refgrove_get_authors(1, " + long_list(600000) + ").\nrefgrove_get_authors(1, " +
                                         nested_list(100000) + ").\nrefgrove_last_did(N).\n");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(r.out.ends_with(".\n?- refgrove_last_did(N).\nN = 0.\n"))
      << r.out.substr(r.out.size() - std::min<std::size_t>(200, r.out.size()));
  for (const char* error : {"ERROR: host limit reached: the goal's terms do not fit in the heap",
                            "ERROR: host limit reached: lists nested deeper than 10000 levels"}) {
    EXPECT_NE(r.err.find(error), std::string::npos) << r.err;
  }
}

TEST(RefgroveHost, HelpAndBadModule) {
  const ChildResult help = run_host({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage: refgrove-host"), std::string::npos);
  const ChildResult version = run_host({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "refgrove-host " REFGROVE_VERSION "\n");
  const ChildResult bad = run_host({"--module", "/nonexistent/refgrove.so", "true"});
  EXPECT_EQ(bad.status, 2);
  EXPECT_NE(bad.err.find("cannot load the module"), std::string::npos) << bad.err;
}

// ---- The examples of the host's page and of --help ------------------------

// Replaces every `from` in `text` by `to`.
std::string replace_all(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// The shell commands of `text`: the lines for which `command_start` gives where
// the command starts (npos for lines that are not commands), joined with
// their continuation lines (ending in a backslash).
template <class Start>
std::vector<std::string> shell_commands(const std::string& text, Start command_start) {
  std::vector<std::string> commands;
  std::istringstream in(text);
  bool continued = false;
  for (std::string line; std::getline(in, line);) {
    if (continued) {
      commands.back() += "\n" + line;
    } else if (const std::size_t start = command_start(line); start != std::string::npos) {
      commands.push_back(line.substr(start));
    } else {
      continue;
    }
    continued = line.ends_with("\\");
  }
  return commands;
}

// Runs the commands one after the other from the top of the source tree, as
// a user on a fresh machine would: /tmp/rg stands for a directory that does
// not exist yet, `program` for refgrove-host of this build.
void expect_examples_work(const std::string& where, const std::vector<std::string>& commands,
                          const std::string& program) {
  ASSERT_FALSE(commands.empty()) << where << ": no commands found";
  TempDir tmp;
  std::string script = "set -e\ncd '" REFGROVE_SOURCE_DIR "'\n";
  for (const std::string& c : commands) {
    script += replace_all(replace_all(c, "/tmp/rg", tmp.path() + "rg"), program, REFGROVE_HOST_PATH) + "\n";
  }
  const ChildResult r = run_in_child([&] {
    execl("/bin/bash", "bash", "-c", script.c_str(), nullptr);
    _exit(127);
  });
  EXPECT_EQ(r.status, 0) << where << ":\n" << script << r.err;
  EXPECT_EQ(r.out.find("\nfalse.\n"), std::string::npos) << where << ":\n" << script << r.out;
  EXPECT_EQ(r.err.find("ERROR"), std::string::npos) << where << ":\n" << script << r.err;
}

TEST(RefgroveHost, ExamplesOfTheReadmeWorkVerbatim) {
  // The host's page of the docs; the scripts there build the project
  // themselves and are left out.
  const std::string page = read_file(REFGROVE_SOURCE_DIR "docs/host.md");
  expect_examples_work("docs/host.md",
                       shell_commands(page,
                                      [](const std::string& line) {
                                        const std::size_t at = line.find_first_not_of(' ');
                                        const bool command = at != std::string::npos &&
                                                             line.compare(at, 2, "$ ") == 0 &&
                                                             line.compare(at + 2, 8, "scripts/") != 0;
                                        return command ? at + 2 : std::string::npos;
                                      }),
                       "build/i386/host/refgrove-host");
}

TEST(RefgroveHost, ExampleOfTheHelpWorksVerbatim) {
  const std::string help = run_host({"--help"}).out;
  const std::size_t from = help.find("\nExample");
  ASSERT_NE(from, std::string::npos) << help;
  const std::string example = help.substr(from + 1, help.find("\n\n", from) - from);
  expect_examples_work("--help",
                       shell_commands(example,
                                      [](const std::string& line) {
                                        return line.starts_with("  ") ? 2 : std::string::npos;  // not the heading
                                      }),
                       "refgrove-host");
}

// The road a user takes: preprocess the repository's sample dumps, load the
// result, ask questions, print a document.
TEST(RefgroveHost, SampleFromDumpsToAnswers) {
  const std::string in = REFGROVE_SAMPLE_DIR;
  TempDir data;
  const std::string preproc = "refgrove_preproc('" + in + "', '" + data.path() + "')";
  const std::string load = "refgrove_load('" + data.path() + "')";
  const ChildResult r =
      run_host({preproc, load, "refgrove_document_count(N), refgrove_get_nb_authors(A)",
                "refgrove_get_authors(102, L), refgrove_get_author(102, 1, Name)",
                "refgrove_title_length(102, N), refgrove_get_title_word(102, 2, W)",
                "refgrove_get_cite(107, 0, Cited, Gid)", "refgrove_get_year(999, Y)", "refgrove_printdoc(102)"});
  EXPECT_EQ(r.status, 0) << r.err;
  std::string reading;
  for (const char* f : {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"}) {
    reading += "  - Reading " + in + f + "\n\n";
  }
  EXPECT_EQ(r.out,
            "init_refgrove:\n[]\n"
            "?- " +
                preproc +
                ".\n"
                "Preproc word data ... \n1. Reading words ... \n" +
                reading +
                "2. Finalizing word-idx\n3. Preproc author\npreprocGraph() ...\n4. Writing word-table\n"
                "Done Preproc Word.\ntrue.\n"
                "?- " +
                load +
                ".\ntrue.\n"
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

}  // namespace refgrove
