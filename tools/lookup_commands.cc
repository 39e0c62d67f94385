// The subcommands over the reverse lookups: `cited-by` (the records citing
// a document), `author-docs` (an author's documents, the authors given by id
// or by --name) and `key-docs` (the documents with a key). Each prints one
// DID per line; with several arguments each line starts with its argument
// and a tab, as grep names the file when it reads several.
#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

// A reverse lookup from an argument of type Arg (a DID, an author id, a
// key) to DIDs.
template <typename Arg>
struct Lookup {
  const char* command;
  const char* summary;
  const char* help;
  const char* arg_name;
  const char* none;  // the message for an argument without results, before the argument
  int (*count)(const RefgroveData& d, Arg arg, int* out);
  int (*get)(const RefgroveData& d, Arg arg, int i, int* did);
};

int as_arg(int value) { return value; }
const char* as_arg(const std::string& value) { return value.c_str(); }

template <typename Arg, typename Value>
int run_lookup(const Lookup<Arg>& lookup, const DataDirArgs& dir, std::vector<Value> args, CommandContext& ctx,
               const std::vector<std::string>& names) {
  const refgrove::DataSetPtr data = load_data_dir(lookup.command, dir, ctx.err);
  if (data == nullptr) return 1;
  int status = 0;
  if constexpr (std::is_same_v<Value, int>) status = add_named_authors(lookup.command, *data, names, &args, ctx.err);
  for (const Value& value : args) {
    const Arg arg = as_arg(value);
    int n = 0;
    if (!lookup.count(*data, arg, &n)) {
      ctx.out.flush();
      ctx.err << "refgrove " << lookup.command << ": " << lookup.none << " " << value << "\n";
      status = 1;
      continue;
    }
    for (int i = 0; i < n; ++i) {
      int did = 0;
      lookup.get(*data, arg, i, &did);
      if (args.size() > 1) ctx.out << value << "\t";
      ctx.out << did << "\n";
    }
  }
  return status;
}

// With `by_name` (author-docs), authors may also be given by --name.
template <typename Value, typename Arg>
void add_lookup(CLI::App& app, CommandContext& ctx, const Lookup<Arg>& lookup, bool by_name = false) {
  CLI::App* cmd = app.add_subcommand(lookup.command, lookup.summary);
  cmd->footer(lookup.help);
  auto dir = std::make_shared<DataDirArgs>();
  auto args = std::make_shared<std::vector<Value>>();
  auto names = std::make_shared<std::vector<std::string>>();
  add_data_dir_args(cmd, dir.get());
  CLI::Option* positional = cmd->add_option(lookup.arg_name, *args);
  if constexpr (std::is_same_v<Value, int>) positional->transform(decimal());
  if (by_name) {
    cmd->add_option("--name", *names, "an author's name, ignoring case; NAME* for the names starting with NAME");
  } else {
    positional->required();
  }
  cmd->callback([&ctx, &lookup, dir, args, names] {
    if (args->empty() && names->empty()) throw CLI::RequiredError(std::string(lookup.arg_name) + " or --name");
    ctx.status = run_lookup(lookup, *dir, *args, ctx, *names);
  });
}

const Lookup<int> kCitedBy = {"cited-by",
                              "list the documents citing documents, by DID",
                              "Prints, for each DID, the DIDs of the graph records citing it, in\n"
                              "ascending order; a record citing it twice is listed twice. Exit status 1\n"
                              "when a DID is cited by none.",
                              "DID",
                              "no document cites",
                              refgrove::cited_by_count,
                              refgrove::get_cited_by};

const Lookup<int> kAuthorDocs = {"author-docs",
                                 "list the documents of authors, by author id",
                                 "Prints, for each author id, the DIDs of the documents listing the\n"
                                 "author, in ascending order. --name NAME (repeatable) adds the authors\n"
                                 "named NAME, ignoring case and accents, or, for NAME*, those whose name\n"
                                 "starts with NAME. Exit status 1 when an author has none or a name names\n"
                                 "no author.",
                                 "ID",
                                 "no document by author",
                                 refgrove::author_doc_count,
                                 refgrove::get_author_doc};

const Lookup<const char*> kKeyDocs = {"key-docs",
                                      "list the documents with keys",
                                      "Prints, for each key, the DIDs of the documents with that key, in\n"
                                      "ascending order (\"-\" and the empty key stand for no key and match\n"
                                      "nothing). Exit status 1 when no document has a key.",
                                      "KEY",
                                      "no document with key",
                                      refgrove::key_doc_count,
                                      refgrove::get_key_doc};

}  // namespace

void add_lookup_commands(CLI::App& app, CommandContext& ctx) {
  add_lookup<int>(app, ctx, kCitedBy);
  add_lookup<int>(app, ctx, kAuthorDocs, true);
  add_lookup<std::string>(app, ctx, kKeyDocs);
}

}  // namespace refgrove
