// Writes the graph half of a data directory as Prolog facts, for comparing
// refgrove's SWI-Prolog library with plain facts consulted or loaded as .qlf:
//
//   doc(Did, Key, Year).          key as an atom ('-' or '' when there is none), year -1 when unknown
//   cites(Citing, Cited).         in the record's order
//   title_word(Did, Pos, Word).   Pos from 0
//   author(Did, Pos, Name).       Pos from 0
//
// Each predicate's clauses are written together, in ascending DID, so that
// consulting sees no discontiguous predicates. The abstracts are left out.
//
// Also writes DIDS_FILE, one fact `bench_dids(List)` holding DIDs drawn at
// random (fixed seed) from the documents with a graph record, so that every
// side of the comparison asks about the same documents.
//
// Usage: prolog_facts DATA_DIR FACTS_FILE DIDS_FILE [COUNT [SEED]]
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "refgrove/query.h"

namespace refgrove {

namespace {

// A quoted atom in the syntax read by consult: quotes and backslashes
// escaped, control characters as \xHH\ (other bytes, UTF-8 included, as they are).
void put_atom(std::string& out, std::string_view text) {
  out += '\'';
  for (const unsigned char c : text) {
    if (c == '\'' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20 || c == 0x7f) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x\\", c);
      out += escape;
    } else {
      out += static_cast<char>(c);
    }
  }
  out += '\'';
}

void put_int(std::string& out, long long v) { out += std::to_string(v); }

// One pass over the documents with a graph record, appending each one's
// clauses of one predicate; the buffer is written out whenever it grows large.
template <typename Clauses>
long long write_predicate(std::ofstream& file, const std::vector<int>& dids, Clauses clauses) {
  std::string out;
  long long count = 0;
  for (const int did : dids) {
    count += clauses(out, did);
    if (out.size() > (1u << 20)) {
      file << out;
      out.clear();
    }
  }
  file << out << '\n';
  return count;
}

// A list of (did, i) items as clauses "name(Did, I, Atom)." through `get`.
template <typename Get>
int positional_clauses(std::string& out, const char* name, int did, int count, Get get) {
  int written = 0;
  for (int i = 0; i < count; ++i) {
    const char* text = nullptr;
    if (!get(did, i, &text)) continue;
    out += name;
    out += '(';
    put_int(out, did);
    out += ',';
    put_int(out, i);
    out += ',';
    put_atom(out, text);
    out += ").\n";
    ++written;
  }
  return written;
}

bool write_facts(const std::string& path, const std::vector<int>& dids) {
  std::ofstream file(path, std::ios::binary);
  file << ":- encoding(utf8).\n\n";
  const long long docs = write_predicate(file, dids, [](std::string& out, int did) {
    const char* key = "";
    int year = -1;
    refgrove_get_key_1(did, &key);
    refgrove_get_year_1(did, &year);
    out += "doc(";
    put_int(out, did);
    out += ',';
    put_atom(out, key);
    out += ',';
    put_int(out, year);
    out += ").\n";
    return 1;
  });
  const long long cites = write_predicate(file, dids, [](std::string& out, int did) {
    int count = 0, cited = 0, gid = 0, i = 0;
    refgrove_cite_count_1(did, &count);
    for (; i < count && refgrove_get_cite_1(did, i, &cited, &gid); ++i) {
      out += "cites(";
      put_int(out, did);
      out += ',';
      put_int(out, cited);
      out += ").\n";
    }
    return i;
  });
  const long long titles = write_predicate(file, dids, [](std::string& out, int did) {
    int count = 0;
    refgrove_title_length_1(did, &count);
    return positional_clauses(out, "title_word", did, count, refgrove_get_title_word_1);
  });
  const long long authors = write_predicate(file, dids, [](std::string& out, int did) {
    int count = 0;
    refgrove_author_count_1(did, &count);
    return positional_clauses(out, "author", did, count, refgrove_get_author_1);
  });
  std::cout << "facts: " << docs << " doc/3, " << cites << " cites/2, " << titles << " title_word/3, " << authors
            << " author/3, " << docs + cites + titles + authors << " in all\n";
  return static_cast<bool>(file.flush());
}

bool write_sample_dids(const std::string& path, const std::vector<int>& dids, int count, unsigned seed) {
  std::mt19937 rng(seed);
  std::string out = "bench_dids([";
  for (int i = 0; i < count && !dids.empty(); ++i) {
    if (i > 0) out += i % 16 == 0 ? ",\n" : ",";
    put_int(out, dids[rng() % dids.size()]);
  }
  out += "]).\n";
  std::ofstream file(path, std::ios::binary);
  file << out;
  return static_cast<bool>(file.flush());
}

}  // namespace

int run_program(int argc, char** argv) {
  if (argc < 4 || argc > 6) {
    std::cerr << "usage: prolog_facts DATA_DIR FACTS_FILE DIDS_FILE [COUNT [SEED]]\n";
    return 2;
  }
  std::string dir = argv[1];
  if (dir.back() != '/') dir += '/';
  const int count = argc > 4 ? std::atoi(argv[4]) : 100000;
  const unsigned seed = argc > 5 ? static_cast<unsigned>(std::strtoul(argv[5], nullptr, 10)) : 7;

  refgrove_load_1(dir.c_str());
  int last = 0;
  refgrove_last_did_1(&last);
  std::vector<int> dids;
  for (int did = 0; did < last; ++did)
    if (refgrove_has_graph_info_1(did)) dids.push_back(did);
  if (dids.empty()) {
    std::cerr << "prolog_facts: no graph records in " << dir << "\n";
    return 1;
  }
  if (!write_facts(argv[2], dids) || !write_sample_dids(argv[3], dids, count, seed)) {
    std::cerr << "prolog_facts: cannot write " << argv[2] << " or " << argv[3] << "\n";
    return 1;
  }
  return 0;
}

}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
