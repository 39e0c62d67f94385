// The subcommands that load a data directory and read it: `stats`,
// `printdoc`, `author` and `query`. Each loads the directory through
// refgrove_load_1 (its messages shown only with --verbose) and then calls the
// library's plain operations, as the host engine's predicates do.
#include <cctype>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/refgrove.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace {

// The arguments of a data command after its options: the directory, then
// the rest.
struct DataArgs {
  bool verbose = false;
  std::string dir;
  std::vector<const char*> rest;
};

// Returns -1 to go on, or an exit status (0 after --help).
int parse_data_args(int argc, char** argv, const char* help, const char* usage, DataArgs* a) {
  int i = 1;
  for (; i < argc && argv[i][0] == '-' && argv[i][1] != '\0' && !std::isdigit(static_cast<unsigned char>(argv[i][1]));
       ++i) {
    if (is_help(argv[i])) {
      std::cout << help;
      return 0;
    }
    if (std::strcmp(argv[i], "-v") == 0 || std::strcmp(argv[i], "--verbose") == 0) {
      a->verbose = true;
    } else if (std::strcmp(argv[i], "--") == 0) {
      ++i;
      break;
    } else {
      std::cerr << "refgrove " << argv[0] << ": unknown option '" << argv[i] << "'\n" << usage;
      return 2;
    }
  }
  if (i >= argc) {
    std::cerr << usage;
    return 2;
  }
  a->dir = as_dir(argv[i]);
  a->rest.assign(argv + i + 1, argv + argc);
  return -1;
}

// Parses every argument as an int; false (after a message) on a bad one.
bool parse_ints(const char* command, const std::vector<const char*>& args, std::vector<int>* out) {
  for (const char* arg : args) {
    int v = 0;
    if (!parse_int(arg, &v)) {
      std::cerr << "refgrove " << command << ": not an integer: '" << arg << "'\n";
      return false;
    }
    out->push_back(v);
  }
  return true;
}

const char kStatsHelp[] =
    "usage: refgrove stats [-v] DIR\n"
    "\n"
    "Loads the data directory DIR and prints its size: graph records,\n"
    "documents with word data, distinct words, authors, citations, title\n"
    "and abstract words, and the largest DID. -v shows the loading messages.\n";

const char kPrintdocHelp[] =
    "usage: refgrove printdoc [-v] DIR DID...\n"
    "\n"
    "Prints each document as the module's refgrove_printdoc does: its\n"
    "word-data header, authors, title and abstract. The title words go to\n"
    "standard error, the rest to standard output. Exit status 1 when a DID is\n"
    "in neither half of the data.\n";

const char kAuthorHelp[] =
    "usage: refgrove author [-v] DIR ID...\n"
    "\n"
    "Prints the name of each author id, one per line. Exit status 1 when an\n"
    "id is not in the author table.\n";

const char kQueryHelp[] =
    "usage: refgrove query [-v] DIR OPERATION [ARGUMENT...]\n"
    "\n"
    "Runs one query operation on the data directory DIR and prints its\n"
    "result on one line. Exit status 1 when the document or item is absent.\n"
    "\n"
    "operations:\n"
    "  last_did                one more than the largest DID\n"
    "  has_graph_info DID      1 when DID has a graph record, else 0\n"
    "  has_word_info DID       1 when DID has word data, else 0\n"
    "  key DID                 the document's key (empty when unknown)\n"
    "  year DID                its year (-1 when unknown)\n"
    "  cite_count DID          number of citations\n"
    "  cite DID I              citation I: the cited DID and its group id\n"
    "  title_length DID        number of title words\n"
    "  title_word DID I        title word I\n"
    "  author_count DID        number of authors\n"
    "  author_id DID I         id of author I\n"
    "  author DID I            name of author I\n"
    "  authors DID             all author ids\n"
    "  word_count DID          number of abstract word positions\n"
    "  word DID I              abstract word I\n"
    "  id2author ID            name of an author id\n"
    "  nb_authors              size of the author table\n"
    "  stats                   the module's statistics: documents, words, authors\n"
    "  author_distance A B     distance of two authors (always 0 for now)\n"
    "Indexes I count from 0.\n";

// One query operation: its name, its number of int arguments, and what it
// prints. `run` returns false when the result is absent.
struct QueryOp {
  const char* name;
  int args;
  bool (*run)(const int* a);
};

// Callers run the operation first and then pass its output: the order in
// which function arguments are evaluated is unspecified.
bool print_int(int found, int value) {
  if (found) std::cout << value << "\n";
  return found != 0;
}

bool print_text(int found, const char* text) {
  if (found) std::cout << (text != nullptr ? text : "") << "\n";
  return found != 0;
}

const QueryOp kQueryOps[] = {
    {"last_did", 0, [](const int*) { int v = 0; refgrove_last_did_1(&v); return print_int(1, v); }},
    {"has_graph_info", 1, [](const int* a) { return print_int(1, refgrove_has_graph_info_1(a[0])); }},
    {"has_word_info", 1, [](const int* a) { return print_int(1, refgrove_has_word_info_1(a[0])); }},
    {"key", 1, [](const int* a) { const char* t = nullptr; const int found = refgrove_get_key_1(a[0], &t); return print_text(found, t); }},
    {"year", 1, [](const int* a) { int v = 0; const int found = refgrove_get_year_1(a[0], &v); return print_int(found, v); }},
    {"cite_count", 1, [](const int* a) { int v = 0; const int found = refgrove_cite_count_1(a[0], &v); return print_int(found, v); }},
    {"cite", 2,
     [](const int* a) {
       int cited = 0, gid = 0;
       if (!refgrove_get_cite_1(a[0], a[1], &cited, &gid)) return false;
       std::cout << cited << " " << gid << "\n";
       return true;
     }},
    {"title_length", 1, [](const int* a) { int v = 0; const int found = refgrove_title_length_1(a[0], &v); return print_int(found, v); }},
    {"title_word", 2,
     [](const int* a) { const char* t = nullptr; const int found = refgrove_get_title_word_1(a[0], a[1], &t); return print_text(found, t); }},
    {"author_count", 1, [](const int* a) { int v = 0; const int found = refgrove_author_count_1(a[0], &v); return print_int(found, v); }},
    {"author_id", 2, [](const int* a) { int v = 0; const int found = refgrove_get_author_id_1(a[0], a[1], &v); return print_int(found, v); }},
    {"author", 2,
     [](const int* a) { const char* t = nullptr; const int found = refgrove_get_author_1(a[0], a[1], &t); return print_text(found, t); }},
    {"authors", 1,
     [](const int* a) {
       int n = 0;
       if (!refgrove_author_count_1(a[0], &n)) return false;
       std::vector<int> ids(static_cast<std::size_t>(n > 0 ? n : 0));
       refgrove_get_authors_1(a[0], ids.data());
       for (std::size_t k = 0; k < ids.size(); ++k) std::cout << (k ? " " : "") << ids[k];
       std::cout << "\n";
       return true;
     }},
    {"word_count", 1, [](const int* a) { int v = 0; const int found = refgrove_word_count_1(a[0], &v); return print_int(found, v); }},
    {"word", 2, [](const int* a) { const char* t = nullptr; const int found = refgrove_get_word_1(a[0], a[1], &t); return print_text(found, t); }},
    {"id2author", 1, [](const int* a) { const char* t = nullptr; const int found = refgrove_id2author_1(a[0], &t); return print_text(found, t); }},
    {"nb_authors", 0, [](const int*) { return print_int(1, refgrove_get_nb_authors_1()); }},
    {"stats", 0,
     [](const int*) {
       int docs = 0, words = 0, authors = 0;
       refgrove_stats_1(&docs, &words, &authors);
       std::cout << docs << " " << words << " " << authors << "\n";
       return true;
     }},
    {"author_distance", 2,
     [](const int* a) {
       std::cout << refgrove_author_distance_1(a[0], a[1]) << "\n";
       return true;
     }},
};

}  // namespace

int stats_command(int argc, char** argv) {
  DataArgs a;
  const char* usage = "usage: refgrove stats [-v] DIR (see refgrove stats --help)\n";
  if (const int status = parse_data_args(argc, argv, kStatsHelp, usage, &a); status >= 0) return status;
  if (!a.rest.empty()) {
    std::cerr << usage;
    return 2;
  }
  if (!load_data_dir("refgrove stats", a.dir, a.verbose)) return 1;

  const RefgroveData& data = *refgrove_data;
  std::int64_t citations = 0, title_words = 0;
  for (const RefgroveGraphData* r : data.graph->docs) {
    citations += r->citations.size();
    title_words += r->title.size();
  }
  std::int64_t word_docs = 0;
  for (std::size_t j = 0; j + 1 < data.word_data->doc_info.size(); ++j) word_docs += data.word_data->doc_info[j].did != -1;
  int last_did = 0;
  refgrove_last_did_1(&last_did);
  std::cout << "graph records        " << data.graph->docs.size() << "\n"
            << "documents with words " << word_docs << "\n"
            << "distinct words       " << data.word_data->word_table->count << "\n"
            << "authors              " << refgrove_get_nb_authors_1() << "\n"
            << "citations            " << citations << "\n"
            << "title words          " << title_words << "\n"
            << "abstract words       " << data.word_data->mapped_word_count() << "\n"
            << "largest DID          " << last_did - 1 << "\n";
  unload_data();
  return 0;
}

int printdoc_command(int argc, char** argv) {
  DataArgs a;
  const char* usage = "usage: refgrove printdoc [-v] DIR DID... (see refgrove printdoc --help)\n";
  if (const int status = parse_data_args(argc, argv, kPrintdocHelp, usage, &a); status >= 0) return status;
  std::vector<int> dids;
  if (a.rest.empty()) {
    std::cerr << usage;
    return 2;
  }
  if (!parse_ints("printdoc", a.rest, &dids)) return 2;
  if (!load_data_dir("refgrove printdoc", a.dir, a.verbose)) return 1;
  int status = 0;
  for (const int did : dids) {
    refgrove_printdoc_1(did);
    if (!refgrove_has_graph_info_1(did) && !refgrove_has_word_info_1(did)) {
      std::cout.flush();
      std::cerr << "refgrove printdoc: no document " << did << "\n";
      status = 1;
    }
  }
  std::cout.flush();
  unload_data();
  return status;
}

int author_command(int argc, char** argv) {
  DataArgs a;
  const char* usage = "usage: refgrove author [-v] DIR ID... (see refgrove author --help)\n";
  if (const int status = parse_data_args(argc, argv, kAuthorHelp, usage, &a); status >= 0) return status;
  std::vector<int> ids;
  if (a.rest.empty()) {
    std::cerr << usage;
    return 2;
  }
  if (!parse_ints("author", a.rest, &ids)) return 2;
  if (!load_data_dir("refgrove author", a.dir, a.verbose)) return 1;
  int status = 0;
  for (const int id : ids) {
    const char* name = nullptr;
    if (!refgrove_id2author_1(id, &name)) {
      std::cout.flush();
      std::cerr << "refgrove author: no author " << id << "\n";
      status = 1;
      continue;
    }
    refgrove_print_author_1(id);
    std::cout << "\n";
  }
  unload_data();
  return status;
}

int query_command(int argc, char** argv) {
  DataArgs a;
  const char* usage = "usage: refgrove query [-v] DIR OPERATION [ARGUMENT...] (see refgrove query --help)\n";
  if (const int status = parse_data_args(argc, argv, kQueryHelp, usage, &a); status >= 0) return status;
  if (a.rest.empty()) {
    std::cerr << usage;
    return 2;
  }
  const QueryOp* op = nullptr;
  for (const QueryOp& o : kQueryOps) {
    if (std::strcmp(o.name, a.rest[0]) == 0) op = &o;
  }
  if (op == nullptr) {
    std::cerr << "refgrove query: unknown operation '" << a.rest[0] << "' (see refgrove query --help)\n";
    return 2;
  }
  const std::vector<const char*> op_args(a.rest.begin() + 1, a.rest.end());
  std::vector<int> ints;
  if (static_cast<int>(op_args.size()) != op->args) {
    std::cerr << "refgrove query: " << op->name << " takes " << op->args << " argument" << (op->args == 1 ? "" : "s")
              << "\n";
    return 2;
  }
  if (!parse_ints("query", op_args, &ints)) return 2;
  if (!load_data_dir("refgrove query", a.dir, a.verbose)) return 1;
  const bool found = op->run(ints.data());
  if (!found) {
    std::cout.flush();
    std::cerr << "refgrove query: " << op->name << ": not found\n";
  }
  unload_data();
  return found ? 0 : 1;
}
