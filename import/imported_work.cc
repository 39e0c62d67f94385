#include "import/imported_work.h"

#include <algorithm>
#include <string_view>

namespace refgrove {

bool is_dump_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0'; }

bool has_dump_blank(std::string_view s) { return std::any_of(s.begin(), s.end(), is_dump_blank); }

namespace {

// The element words of the graph dump's line: in a title or a name they
// would end it, so they are left out of both.
bool is_dump_element(std::string_view token) { return token == "Title:" || token == "Authors:"; }

// The tokens of `text` as the dump's tokenizer splits them, each after a
// blank.
std::string dump_tokens(std::string_view text) {
  std::string out;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && is_dump_blank(text[i])) ++i;
    const std::size_t start = i;
    while (i < text.size() && !is_dump_blank(text[i])) ++i;
    const std::string_view token = text.substr(start, i - start);
    if (token.empty() || is_dump_element(token)) continue;
    out += ' ';
    out += token;
  }
  return out;
}

}  // namespace

void WorkSet::add(ImportedWork work) {
  ++read_;
  const auto [at, inserted] = by_key_.try_emplace(work.key, works_.size());
  if (inserted) {
    works_.push_back(std::move(work));
  } else {
    works_[at->second] = std::move(work);
    ++replaced_;
  }
}

void WorkSet::add_citation(std::string citing, std::string cited) {
  if (cited.empty()) {
    ++cites_unknown_;
    return;
  }
  cites_apart_[std::move(citing)].push_back(std::move(cited));
  ++cites_apart_count_;
}

void WorkSet::add_abstract(std::string key, std::string abstract) {
  abstracts_apart_[std::move(key)] = std::move(abstract);
}

WorkSetCounts WorkSet::write_dumps(std::ostream& graph, std::ostream& words,
                                   std::vector<std::string>* outside_keys) const {
  WorkSetCounts counts;
  counts.read = read_;
  counts.replaced = replaced_;
  const auto kept = [this](const ImportedWork& w) { return !years_ || years_->contains(w.year); };
  // DIDs of the kept works first, then of the outside works as cited.
  std::unordered_map<std::string_view, std::int64_t> did_of;
  for (const ImportedWork& w : works_) {
    if (kept(w)) did_of.emplace(w.key, ++counts.kept);
  }
  std::int64_t did = 0, placed_apart = 0;
  std::vector<std::int64_t> cited;
  const auto cite = [&](const std::string& key) {
    auto [at, inserted] = did_of.try_emplace(key, counts.kept + counts.outside_works + 1);
    if (inserted) {
      ++counts.outside_works;
      outside_keys->push_back(key);
    }
    ++(at->second <= counts.kept ? counts.citations_within : counts.citations_outside);
    cited.push_back(at->second);
  };
  for (const ImportedWork& w : works_) {
    if (!kept(w)) continue;
    ++did;
    cited.clear();
    for (const std::string& key : w.cites) cite(key);
    if (const auto apart = cites_apart_.find(w.key); apart != cites_apart_.end()) {
      for (const std::string& key : apart->second) cite(key);
      placed_apart += static_cast<std::int64_t>(apart->second.size());
    }
    graph << did << ' ' << (w.key.empty() ? "-" : w.key) << ' ';
    if (w.year) {
      graph << *w.year;
    } else {
      graph << '-';
    }
    graph << " GIDs:";
    for (std::int64_t c : cited) graph << ' ' << c;
    graph << " DIDs:";
    for (std::int64_t c : cited) graph << ' ' << c;
    graph << " Title:";
    // A dump's title has at least one word: an unknown one is written "-",
    // as the dumps write an unknown key or year.
    const std::string title = dump_tokens(w.title);
    graph << (title.empty() ? " -" : title);
    graph << " Authors:";
    bool first = true;
    for (const std::string& name : w.authors) {
      const std::string tokens = dump_tokens(name);
      if (tokens.empty()) continue;
      if (!first) graph << " and";
      graph << tokens;
      first = false;
    }
    graph << '\n';
    const auto apart = abstracts_apart_.find(w.key);
    const std::string& abstract = w.abstract.empty() && apart != abstracts_apart_.end() ? apart->second : w.abstract;
    if (!abstract.empty()) {
      // The token after a word dump line's DID is skipped, but the word
      // dumps' tokenizer would cut a key holding punctuation into several:
      // "-" stands in for it.
      words << did << " -";
      words << dump_tokens(abstract);
      words << '\n';
    }
  }
  counts.citations_unplaced = cites_apart_count_ - placed_apart;
  counts.citations_unknown = cites_unknown_;
  return counts;
}

}  // namespace refgrove
