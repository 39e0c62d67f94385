#include "import/imported_work.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace refgrove {

bool is_dump_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0'; }

bool has_dump_blank(std::string_view s) { return std::any_of(s.begin(), s.end(), is_dump_blank); }

namespace {

// The element words of the graph dump's line: in a title or a name they
// would end it, so they are left out of both.
bool is_dump_element(std::string_view token) { return token == "Title:" || token == "Authors:"; }

// Appends to `out` the tokens of `text` as the dump's tokenizer splits
// them, each after a blank; returns whether there was any.
bool append_dump_tokens(std::string_view text, std::string& out) {
  bool any = false;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && is_dump_blank(text[i])) ++i;
    const std::size_t start = i;
    while (i < text.size() && !is_dump_blank(text[i])) ++i;
    const std::string_view token = text.substr(start, i - start);
    if (token.empty() || is_dump_element(token)) continue;
    out += ' ';
    out += token;
    any = true;
  }
  return any;
}

void append_number(std::int64_t n, std::string& out) {
  char digits[24];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, n);
  out.append(digits, end);
}

// The dumps are built in memory a piece at a time and written out in
// pieces of about this size.
constexpr std::size_t kOutputPiece = std::size_t{1} << 20;

void write_piece(std::string& text, std::ostream& out) {
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  text.clear();
}

}  // namespace

WorkSet::WorkSet(std::optional<YearRange> years, const std::string& spool_dir)
    : years_(years), text_spool_(spool_dir), abstract_spool_(spool_dir) {}

WorkSet::KeyIndex WorkSet::key_index(std::string_view key) {
  if (const auto at = index_of_.find(key); at != index_of_.end()) return at->second;
  const auto index = static_cast<KeyIndex>(keys_.size());
  keys_.emplace_back(key);
  index_of_.emplace(keys_.back(), index);
  work_of_.push_back(0);
  return index;
}

void WorkSet::add(const ImportedWork& record) {
  ++read_;
  const KeyIndex key = key_index(record.key);
  if (work_of_[key] == 0) {
    works_.emplace_back();
    work_of_[key] = static_cast<std::uint32_t>(works_.size());
  } else {
    ++replaced_;
  }
  Work& w = works_[work_of_[key] - 1];
  w.key = key;
  w.has_year = record.year.has_value();
  w.year = record.year.value_or(0);
  w.cites_at = cites_.size();
  w.cites_size = static_cast<std::uint32_t>(record.cites.size());
  for (const std::string& cited : record.cites) cites_.push_back(key_index(cited));

  scratch_ = " Title:";
  // A dump's title has at least one word: an unknown one is written "-",
  // as the dumps write an unknown key or year.
  if (!append_dump_tokens(record.title, scratch_)) scratch_ += " -";
  scratch_ += " Authors:";
  bool first = true;
  for (const std::string& name : record.authors) {
    const std::size_t before = scratch_.size();
    if (!first) scratch_ += " and";
    if (append_dump_tokens(name, scratch_)) {
      first = false;
    } else {
      scratch_.resize(before);
    }
  }
  scratch_ += '\n';
  w.text = {text_spool_.append(scratch_), scratch_.size()};

  w.abstract = {kNone, 0};
  if (!record.abstract.empty()) {
    scratch_.clear();
    append_dump_tokens(record.abstract, scratch_);
    w.abstract = {abstract_spool_.append(scratch_), scratch_.size()};
  }
}

void WorkSet::add_citation(std::string_view citing, std::string_view cited) {
  if (cited.empty()) {
    ++cites_unknown_;
    return;
  }
  const KeyIndex from = key_index(citing);
  cites_apart_[from].push_back(key_index(cited));
  ++cites_apart_count_;
}

void WorkSet::add_abstract(std::string_view key, std::string_view abstract) {
  Spooled& spooled = abstracts_apart_[key_index(key)];
  spooled = {kNone, 0};
  if (abstract.empty()) return;
  scratch_.clear();
  append_dump_tokens(abstract, scratch_);
  spooled = {abstract_spool_.append(scratch_), scratch_.size()};
}

void WorkSet::write_work(const Work& w, std::int64_t did, const std::vector<std::int64_t>& cited, std::string& graph,
                         std::string& words) {
  append_number(did, graph);
  graph += ' ';
  graph += keys_[w.key].empty() ? "-" : keys_[w.key];
  graph += ' ';
  if (w.has_year) {
    append_number(w.year, graph);
  } else {
    graph += '-';
  }
  for (const char* list : {" GIDs:", " DIDs:"}) {
    graph += list;
    for (std::int64_t c : cited) {
      graph += ' ';
      append_number(c, graph);
    }
  }
  graph += text_spool_.read(w.text.at, w.text.size);

  Spooled abstract = w.abstract;
  if (abstract.at == kNone) {
    if (const auto apart = abstracts_apart_.find(w.key); apart != abstracts_apart_.end()) abstract = apart->second;
  }
  if (abstract.at != kNone) {
    // The token after a word dump line's DID is skipped, but the word
    // dumps' tokenizer would cut a key holding punctuation into several:
    // "-" stands in for it.
    append_number(did, words);
    words += " -";
    words += abstract_spool_.read(abstract.at, abstract.size);
    words += '\n';
  }
}

WorkSetCounts WorkSet::write_dumps(std::ostream& graph, std::ostream& words, std::vector<std::string>* outside_keys) {
  WorkSetCounts counts;
  counts.read = read_;
  counts.replaced = replaced_;
  const auto kept = [this](const Work& w) {
    return !years_ || years_->contains(w.has_year ? std::optional(w.year) : std::nullopt);
  };
  // DIDs of the kept works first, then of the outside works as cited.
  std::vector<std::int64_t> did_of(keys_.size(), 0);
  for (const Work& w : works_) {
    if (kept(w)) did_of[w.key] = ++counts.kept;
  }
  std::int64_t did = 0, placed_apart = 0;
  std::vector<std::int64_t> cited;
  const auto cite = [&](KeyIndex key) {
    if (did_of[key] == 0) {
      did_of[key] = counts.kept + ++counts.outside_works;
      outside_keys->push_back(keys_[key]);
    }
    ++(did_of[key] <= counts.kept ? counts.citations_within : counts.citations_outside);
    cited.push_back(did_of[key]);
  };
  std::string graph_text, words_text;
  for (const Work& w : works_) {
    if (!kept(w)) continue;
    ++did;
    cited.clear();
    for (std::uint64_t i = w.cites_at; i < w.cites_at + w.cites_size; ++i) cite(cites_[i]);
    if (const auto apart = cites_apart_.find(w.key); apart != cites_apart_.end()) {
      for (KeyIndex key : apart->second) cite(key);
      placed_apart += static_cast<std::int64_t>(apart->second.size());
    }
    write_work(w, did, cited, graph_text, words_text);
    if (graph_text.size() > kOutputPiece) write_piece(graph_text, graph);
    if (words_text.size() > kOutputPiece) write_piece(words_text, words);
  }
  write_piece(graph_text, graph);
  write_piece(words_text, words);
  counts.citations_unplaced = cites_apart_count_ - placed_apart;
  counts.citations_unknown = cites_unknown_;
  return counts;
}

}  // namespace refgrove
