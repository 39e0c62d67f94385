// `refgrove export DIR [--format jsonl|csv] [-o FILE]`: every document of a
// data directory, in ascending DID order, as JSON lines or as CSV.
// Both formats are written as UTF-8 (see core/utf8_text.h).
#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/document_text.h"
#include "core/json_fields.h"
#include "tools/commands.h"
#include "tools/network_formats.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

void write_json_line(const refgrove::DocumentText& doc, std::ostream& out) {
  nlohmann::ordered_json j = {{field::did, doc.did},          {field::key, doc.key},         {field::year, nullptr},
                              {field::title, doc.title},      {field::authors, doc.authors}, {field::cites, doc.cites},
                              {field::abstract, doc.abstract}};
  if (doc.year) j[field::year] = *doc.year;
  out << j.dump() << "\n";
}

// A CSV field: quoted, with its quotes doubled, when it holds a comma, a
// quote or a line break.
void write_csv_field(const std::string& field, std::ostream& out) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) {
    out << field;
    return;
  }
  out << '"';
  for (const char c : field) out << (c == '"' ? "\"\"" : std::string_view(&c, 1));
  out << '"';
}

template <typename T>
std::string join(const std::vector<T>& items, const char* separator) {
  std::string text;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += separator;
    if constexpr (std::is_same_v<T, std::string>) {
      text += items[i];
    } else {
      text += std::to_string(items[i]);
    }
  }
  return text;
}

const char kCsvHeader[] = "did,key,year,title,authors,cites,abstract\r\n";

void write_csv_record(const refgrove::DocumentText& doc, std::ostream& out) {
  const std::string fields[] = {std::to_string(doc.did),
                                doc.key,
                                doc.year ? std::to_string(*doc.year) : "",
                                doc.title,
                                join(doc.authors, "; "),
                                join(doc.cites, " "),
                                doc.abstract};
  for (std::size_t i = 0; i < std::size(fields); ++i) {
    if (i > 0) out << ',';
    write_csv_field(fields[i], out);
  }
  out << "\r\n";
}

struct ExportArgs {
  DataDirArgs dir;
  std::string format = "jsonl";
  std::string output;  // empty: standard output
};

void export_documents(const RefgroveData& d, const std::string& format, std::ostream& out) {
  if (format == "graphml") return write_graphml(whole_citation_graph(d), out);
  if (format == "edges") return write_edge_list(whole_citation_graph(d), out);
  const bool csv = format == "csv";
  if (csv) out << kCsvHeader;
  int end = 0;
  refgrove::last_did(d, &end);
  for (int did = 0; did < end && out; ++did) {
    if (!refgrove::has_graph_info(d, did) && !refgrove::has_word_info(d, did)) continue;
    const refgrove::DocumentText doc = refgrove::document_text(d, did);
    csv ? write_csv_record(doc, out) : write_json_line(doc, out);
  }
}

int run_export(const ExportArgs& args, CommandContext& ctx) {
  const refgrove::DataSetPtr data = load_data_dir("export", args.dir, ctx.err);
  if (data == nullptr) return 1;
  if (args.output.empty()) {
    export_documents(*data, args.format, ctx.out);
    if (ctx.out.flush()) return 0;
    ctx.err << "refgrove export: cannot write to standard output\n";
    return 1;
  }
  errno = 0;
  std::ofstream file(args.output, std::ios::binary);
  if (file.is_open()) {
    export_documents(*data, args.format, file);
    file.close();
  }
  if (!file) {
    ctx.err << "refgrove export: " << args.output << ": " << std::strerror(errno != 0 ? errno : EIO) << "\n";
    return 1;
  }
  return 0;
}

const char kHelp[] =
    "Writes every document of the data directory DIR (both halves, in\n"
    "ascending DID order) to standard output or FILE.\n"
    "\n"
    "jsonl: one JSON object per line with the fields did, key (\"\" when\n"
    "unknown), year (null when unknown), title (its words joined by blanks),\n"
    "authors (their names), cites (the cited DIDs) and abstract (its\n"
    "words as preprocessing wrote them, joined by blanks).\n"
    "csv: the same fields under a header line, records ending in CRLF, fields\n"
    "holding a comma, a quote or a line break quoted with their quotes\n"
    "doubled; authors joined by \"; \", cites by blanks, an unknown year\n"
    "empty.\n"
    "graphml: the citation graph (documents with a graph record, one edge per\n"
    "distinct citation among them) for networkx, igraph or Gephi.\n"
    "edges: the same edges as CITING<TAB>CITED lines.\n"
    "\n"
    "Texts are written as UTF-8: byte sequences of the dumps that are valid\n"
    "UTF-8 are kept, every other byte is read as a Latin-1 character.\n"
    "\n"
    "Exit status: 0 when written, 1 when DIR is not a data directory or FILE\n"
    "cannot be written, 2 on a usage error.";

}  // namespace

void add_export_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("export", "write a data directory as JSON lines or CSV");
  cmd->footer(kHelp);
  auto args = std::make_shared<ExportArgs>();
  add_data_dir_args(cmd, &args->dir);
  cmd->add_option("--format", args->format, "jsonl, csv, graphml or edges")
      ->check(CLI::IsMember({"jsonl", "csv", "graphml", "edges"}))
      ->capture_default_str();
  cmd->add_option("-o,--output", args->output, "the file to write (default: standard output)")->type_name("FILE");
  cmd->callback([&ctx, args] { ctx.status = run_export(*args, ctx); });
}

}  // namespace refgrove
