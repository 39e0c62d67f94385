// `refgrove show DIR DID...`: a document for people to read, on standard
// output: its key, year, title, authors and abstract, then the documents it
// cites and those citing it, each with its key and title.
#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

#include "core/document_text.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

const char kHelp[] =
    "Prints each document DID of the data directory DIR:\n"
    "\n"
    "  DID      1\n"
    "  key      lee98\n"
    "  year     1998\n"
    "  title    Sorting graphs\n"
    "  authors  A. Lee; B. Ray\n"
    "  abstract We sort graphs .\n"
    "  cites 1\n"
    "    7 ray97: Trees\n"
    "  cited by 0\n"
    "\n"
    "A field the data does not hold reads \"(none)\"; a cited document that is\n"
    "not in the data is marked so. The abstract is the one preprocessing\n"
    "wrote for the document (refgrove printdoc and the module's query word\n"
    "print, for every document but the first of word-idx, the words of\n"
    "another). Texts are written as UTF-8: byte sequences of the dumps that\n"
    "are valid UTF-8 are kept, every other byte is read as a Latin-1\n"
    "character. Documents are separated by an empty line.\n"
    "\n"
    "Exit status: 0 when every DID was shown, 1 when DIR is not a data\n"
    "directory or a DID is in neither half of the data (named on standard\n"
    "error), 2 on a usage error.";

bool in_data(const RefgroveData& d, int did) {
  return refgrove::has_graph_info(d, did) || refgrove::has_word_info(d, did);
}

void field(std::ostream& out, const char* label, const std::string& text) {
  out << label << (text.empty() ? "(none)" : text) << "\n";
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : "; ") + name;
  return text;
}

// "  7 ray97: Trees" for a document that a listed document cites or is cited by.
void list_entry(std::ostream& out, const RefgroveData& d, int did) {
  out << "  " << did;
  if (!in_data(d, did)) {
    out << " (not in the data)\n";
    return;
  }
  const refgrove::DocumentText doc = refgrove::document_text(d, did);
  out << (doc.key.empty() ? "" : " " + doc.key) << ": " << doc.title << "\n";
}

void show(const RefgroveData& d, int did, std::ostream& out) {
  const refgrove::DocumentText doc = refgrove::document_text(d, did);
  out << "DID      " << did << "\n";
  field(out, "key      ", doc.key);
  field(out, "year     ", doc.year ? std::to_string(*doc.year) : "");
  field(out, "title    ", doc.title);
  field(out, "authors  ", joined(doc.authors));
  field(out, "abstract ", doc.abstract);
  out << "cites " << doc.cites.size() << "\n";
  for (const int cited : doc.cites) list_entry(out, d, cited);
  int citing = 0;
  refgrove::cited_by_count(d, did, &citing);
  out << "cited by " << citing << "\n";
  for (int i = 0; i < citing; ++i) {
    int by = 0;
    refgrove::get_cited_by(d, did, i, &by);
    list_entry(out, d, by);
  }
}

int run_show(const DataDirArgs& dir, const std::vector<int>& dids, CommandContext& ctx) {
  const refgrove::DataSetPtr data = load_data_dir("show", dir, ctx.err);
  if (data == nullptr) return 1;
  int status = 0;
  bool first = true;
  for (const int did : dids) {
    if (!in_data(*data, did)) {
      ctx.out.flush();
      ctx.err << "refgrove show: no document " << did << "\n";
      status = 1;
      continue;
    }
    if (!first) ctx.out << "\n";
    first = false;
    show(*data, did, ctx.out);
  }
  return status;
}

}  // namespace

void add_show_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("show",
                                     "show documents for reading: key, year, title, authors, abstract, "
                                     "citations both ways");
  cmd->footer(kHelp);
  auto dir = std::make_shared<DataDirArgs>();
  auto dids = std::make_shared<std::vector<int>>();
  add_data_dir_args(cmd, dir.get());
  cmd->add_option("DID", *dids, "document ids")->required()->transform(decimal());
  cmd->callback([&ctx, dir, dids] { ctx.status = run_show(*dir, *dids, ctx); });
}

}  // namespace refgrove
