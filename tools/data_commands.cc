// The subcommands that load a data directory and read it: `stats`,
// `printdoc`, `author` and `query`. Each loads the directory into a data set
// of its own (its messages shown only with --verbose) and then calls the
// same query operations as the module's C interface.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/data_set.h"
#include "core/predicate_table.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

using refgrove::DataSetPtr;

// The code of one query operation of the predicate table: its name under
// `query`, what it gives, and how it prints its result. `run` returns false
// when the result is absent.
struct QueryOp {
  std::string_view name;
  const char* summary;
  bool (*run)(const RefgroveData& d, const int* a, std::ostream& out);
};

bool print_int(std::ostream& out, int found, int value) {
  if (found) out << value << "\n";
  return found != 0;
}

bool print_text(std::ostream& out, int found, const char* text) {
  if (found) out << (text != nullptr ? text : "") << "\n";
  return found != 0;
}

// Callers run the operation before passing its output: the order in which
// function arguments are evaluated is unspecified.
const QueryOp kQueryOps[] = {
    {"last_did", "one more than the largest DID",
     [](const RefgroveData& d, const int*, std::ostream& out) {
       int v = 0;
       refgrove::last_did(d, &v);
       return print_int(out, 1, v);
     }},
    {"has_graph_info", "1 when DID has a graph record, else 0",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       return print_int(out, 1, refgrove::has_graph_info(d, a[0]));
     }},
    {"has_word_info", "1 when DID has word data, else 0",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       return print_int(out, 1, refgrove::has_word_info(d, a[0]));
     }},
    {"key", "the document's key (empty when unknown)",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       const char* t = nullptr;
       const int found = refgrove::get_key(d, a[0], &t);
       return print_text(out, found, t);
     }},
    {"year", "its year (-1 when unknown)",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::get_year(d, a[0], &v);
       return print_int(out, found, v);
     }},
    {"cite_count", "number of citations",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::cite_count(d, a[0], &v);
       return print_int(out, found, v);
     }},
    {"cite", "citation I: the cited DID and its group id",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int cited = 0, gid = 0;
       if (!refgrove::get_cite(d, a[0], a[1], &cited, &gid)) return false;
       out << cited << " " << gid << "\n";
       return true;
     }},
    {"title_length", "number of title words",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::title_length(d, a[0], &v);
       return print_int(out, found, v);
     }},
    {"title_word", "title word I",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       const char* t = nullptr;
       const int found = refgrove::get_title_word(d, a[0], a[1], &t);
       return print_text(out, found, t);
     }},
    {"author_count", "number of authors",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::author_count(d, a[0], &v);
       return print_int(out, found, v);
     }},
    {"author_id", "id of author I",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::get_author_id(d, a[0], a[1], &v);
       return print_int(out, found, v);
     }},
    {"author", "name of author I",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       const char* t = nullptr;
       const int found = refgrove::get_author(d, a[0], a[1], &t);
       return print_text(out, found, t);
     }},
    {"authors", "all author ids",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int n = 0;
       if (!refgrove::author_count(d, a[0], &n)) return false;
       std::vector<int> ids(static_cast<std::size_t>(n > 0 ? n : 0));
       refgrove::get_authors(d, a[0], ids.data());
       for (std::size_t k = 0; k < ids.size(); ++k) out << (k ? " " : "") << ids[k];
       out << "\n";
       return true;
     }},
    {"word_count", "number of abstract word positions",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       int v = 0;
       const int found = refgrove::word_count(d, a[0], &v);
       return print_int(out, found, v);
     }},
    {"word", "abstract word I",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       const char* t = nullptr;
       const int found = refgrove::get_word(d, a[0], a[1], &t);
       return print_text(out, found, t);
     }},
    {"id2author", "name of an author id",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       const char* t = nullptr;
       const int found = refgrove::id2author(d, a[0], &t);
       return print_text(out, found, t);
     }},
    {"nb_authors", "size of the author table",
     [](const RefgroveData& d, const int*, std::ostream& out) {
       return print_int(out, 1, refgrove::get_nb_authors(d));
     }},
    {"stats", "the module's statistics: word-idx headers (the end sentinel included), distinct words, authors",
     [](const RefgroveData& d, const int*, std::ostream& out) {
       int headers = 0, words = 0, authors = 0;
       refgrove::stats(&d, &headers, &words, &authors);
       out << "word-idx headers " << headers << " (the end sentinel included), distinct words " << words << ", authors "
           << authors << "\n";
       return true;
     }},
    {"author_distance", "distance of two authors (always 0 for now)",
     [](const RefgroveData& d, const int* a, std::ostream& out) {
       out << refgrove::author_distance(d, a[0], a[1]) << "\n";
       return true;
     }},
};

// The names of a query's arguments: those before the first output, which
// is whatever follows an item index or is not a document or author id. A
// kind given twice is numbered.
std::vector<std::string> query_arg_names(const PredicateInfo& p) {
  std::vector<std::string> names;
  for (const PredicateArg kind : p.args()) {
    if (kind != PredicateArg::did && kind != PredicateArg::author_id && kind != PredicateArg::item) break;
    names.push_back(kind == PredicateArg::did ? "DID" : kind == PredicateArg::item ? "I" : "ID");
    if (kind == PredicateArg::item) break;
  }
  std::vector<std::string> numbered = names;
  for (std::size_t k = 0; k < names.size(); ++k) {
    if (std::ranges::count(names, names[k]) > 1)
      numbered[k] += std::to_string(std::count(names.begin(), names.begin() + k + 1, names[k]));
  }
  return numbered;
}

// The code of the predicate table's query operation `name`; every operation
// of the table has its code here and every code its line there.
const QueryOp& query_op(std::string_view name) {
  const auto op = std::ranges::find(kQueryOps, name, &QueryOp::name);
  if (op == std::end(kQueryOps)) throw std::logic_error("refgrove query: no code for " + std::string(name));
  return *op;
}

void run_stats(const DataSetPtr& data, std::ostream& out) {
  std::int64_t citations = 0, title_words = 0;
  for (const RefgroveGraphData* r : data->graph->docs) {
    citations += r->citations.size();
    title_words += r->title.size();
  }
  const std::vector<DocumentWordInfo>& headers = data->word_data->doc_info;
  std::int64_t word_docs = 0;
  for (std::size_t j = 0; j + 1 < headers.size(); ++j) word_docs += headers[j].did != -1;
  int last_did = 0, module_docs = 0, words = 0, authors = 0;
  refgrove::last_did(*data, &last_did);
  refgrove::stats(data.get(), &module_docs, &words, &authors);
  out << "graph records        " << data->graph->docs.size() << "\n"
      << "documents with words " << word_docs << " (word-idx headers but the end sentinel)\n"
      << "word-idx headers     " << module_docs << " (the end sentinel included: query stats counts these)\n"
      << "distinct words       " << data->word_data->word_table->count << "\n"
      << "authors              " << refgrove::get_nb_authors(*data) << "\n"
      << "citations            " << citations << "\n"
      << "title words          " << title_words << "\n"
      << "abstract words       " << data->word_data->mapped_word_count() << "\n"
      << "largest DID          " << last_did - 1 << "\n";
}

int run_printdoc(const DataSetPtr& data, const std::vector<int>& dids, CommandContext& ctx) {
  int status = 0;
  for (const int did : dids) {
    if (!refgrove::has_graph_info(*data, did) && !refgrove::has_word_info(*data, did)) {
      ctx.out.flush();
      ctx.err << "refgrove printdoc: no document " << did << "\n";
      status = 1;
      continue;
    }
    refgrove::printdoc(*data, did, ctx.out, ctx.err);
  }
  return status;
}

// The names of `ids`, and of the authors `names` names: those each on a
// line of its own after their id and a tab.
int run_author(const DataSetPtr& data, const std::vector<int>& ids, const std::vector<std::string>& names,
               CommandContext& ctx) {
  std::vector<int> named;
  int status = add_named_authors("author", *data, names, &named, ctx.err);
  for (const int id : ids) {
    const char* name = nullptr;
    if (!refgrove::id2author(*data, id, &name)) {
      ctx.out.flush();
      ctx.err << "refgrove author: no author " << id << "\n";
      status = 1;
      continue;
    }
    refgrove::print_author(*data, id, ctx.out);
    ctx.out << "\n";
  }
  for (const int id : named) {
    ctx.out << id << "\t";
    refgrove::print_author(*data, id, ctx.out);
    ctx.out << "\n";
  }
  return status;
}

// Each operation is a subcommand of `query`, after DIR: `query DIR cite 119 0`.
void add_query_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* query = app.add_subcommand("query", "run one query operation on a data directory and print its result");
  query->footer(
      "Runs one query operation on the data directory DIR and prints its result\n"
      "on one line. Indexes I count from 0. Exit status 1 when the document or\n"
      "item is absent.");
  query->require_subcommand(1);
  auto args = std::make_shared<DataDirArgs>();
  add_data_dir_args(query, args.get());
  auto ints = std::make_shared<std::vector<int>>(2);
  std::size_t ops = 0;
  for (const PredicateInfo& predicate : kPredicateTable) {
    if (predicate.query.empty()) continue;
    const QueryOp& op = query_op(predicate.query);
    ++ops;
    const std::vector<std::string> arg_names = query_arg_names(predicate);
    std::string usage;  // "DID I: " before the summary
    for (const std::string& arg : arg_names) usage += (usage.empty() ? "" : " ") + arg;
    CLI::App* sub = query->add_subcommand(std::string(op.name), usage.empty() ? op.summary : usage + ": " + op.summary);
    sub->fallthrough();  // -v after the operation still belongs to `query`
    for (std::size_t k = 0; k < arg_names.size(); ++k) {
      sub->add_option(arg_names[k], (*ints)[k])->required()->transform(decimal());
    }
    sub->callback([&ctx, &op, args, ints] {
      const DataSetPtr data = load_data_dir("query", *args, ctx.err);
      if (data == nullptr) {
        ctx.status = 1;
        return;
      }
      if (op.run(*data, ints->data(), ctx.out)) return;
      ctx.out.flush();
      ctx.err << "refgrove query: " << op.name << ": not found\n";
      ctx.status = 1;
    });
  }
  if (ops != std::size(kQueryOps)) throw std::logic_error("refgrove query: code for an operation outside the table");
}

}  // namespace

void add_data_commands(CLI::App& app, CommandContext& ctx) {
  CLI::App* stats = app.add_subcommand("stats", "show the size of a data directory");
  stats->footer(
      "Loads the data directory DIR and prints its size: graph records,\n"
      "documents with word data, the headers of word-idx (one per document\n"
      "with word data, and the end sentinel: the documents of the module's\n"
      "refgrove_stats and of query stats), distinct words, authors, citations,\n"
      "title and abstract words, and the largest DID.");
  auto stats_args = std::make_shared<DataDirArgs>();
  add_data_dir_args(stats, stats_args.get());
  stats->callback([&ctx, stats_args] {
    const DataSetPtr data = load_data_dir("stats", *stats_args, ctx.err);
    if (data == nullptr) {
      ctx.status = 1;
      return;
    }
    run_stats(data, ctx.out);
  });

  CLI::App* printdoc = app.add_subcommand("printdoc", "print documents by DID as the module does (see refgrove show)");
  printdoc->footer(
      "Prints each document exactly as the module's refgrove_printdoc does:\n"
      "its word-data header, authors, title and abstract, with two oddities\n"
      "kept so. The title words go to standard error (their label \"title:\"\n"
      "to standard output). The abstract reads the document's offset in\n"
      "word-idx as a count of word ids where it is a byte position, and the\n"
      "\"# words\" count is the distance of two such offsets, three times the\n"
      "real count: the first document of word-idx shows its own abstract\n"
      "(and more words after it), every other one the words of another\n"
      "document, or fewer, or none past the end of the data. refgrove show\n"
      "prints a document as written, all on standard output. A DID in neither\n"
      "half of the data is named on standard error, and the exit status is\n"
      "then 1.");
  auto printdoc_args = std::make_shared<DataDirArgs>();
  auto dids = std::make_shared<std::vector<int>>();
  add_data_dir_args(printdoc, printdoc_args.get());
  printdoc->add_option("DID", *dids, "document ids")->required()->transform(decimal());
  printdoc->callback([&ctx, printdoc_args, dids] {
    const DataSetPtr data = load_data_dir("printdoc", *printdoc_args, ctx.err);
    ctx.status = data == nullptr ? 1 : run_printdoc(data, *dids, ctx);
  });

  CLI::App* author = app.add_subcommand("author", "print authors of a data directory by id, or find them by name");
  author->footer(
      "Prints the name of each author id, one per line. --name NAME\n"
      "(repeatable) prints the id and name, tab-separated, of each author named\n"
      "NAME, ignoring case and accents, or, for NAME*, of each author whose\n"
      "name starts with NAME. A NAME that names nobody is taken as words that\n"
      "start words of the name (\"erdos\" finds P. Erdős), the spellings of one\n"
      "person listed together. Exit status 1 when an id is not in the author\n"
      "table or a name names no author.");
  auto author_args = std::make_shared<DataDirArgs>();
  auto ids = std::make_shared<std::vector<int>>();
  auto names = std::make_shared<std::vector<std::string>>();
  add_data_dir_args(author, author_args.get());
  author->add_option("ID", *ids, "author ids")->transform(decimal());
  author->add_option("--name", *names, "an author's name, ignoring case; NAME* for the names starting with NAME");
  author->callback([&ctx, author_args, ids, names] {
    if (ids->empty() && names->empty()) throw CLI::RequiredError("ID or --name");
    const DataSetPtr data = load_data_dir("author", *author_args, ctx.err);
    ctx.status = data == nullptr ? 1 : run_author(data, *ids, *names, ctx);
  });

  add_query_command(app, ctx);
}

}  // namespace refgrove
