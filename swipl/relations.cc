// The relations beyond the host's predicates: documents, citations in
// either direction, keys and authorship, each enumerable on backtracking,
// and a document's title, abstract and authors as lists.
//
// An enumeration is a Walk: the data set it reads (held across redos, so
// that a load in between cannot free it), a position, and a step function
// that produces the next (a, b) pair. The driver looks one solution ahead,
// skipping pairs that a bound argument rules out, so that the last
// solution leaves no choice point.
#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/lookup.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"
#include "swipl/set_tables.h"

namespace refgrove::swipl {
namespace {

using CountLookup = int (*)(const RefgroveData&, int, int*);
using TextLookup = int (*)(const RefgroveData&, int, int, const char**);

struct Pair {
  int a = 0;
  int b = 0;
};

struct Walk;
using Step = bool (*)(Walk& walk, Pair* next);
// Unifies the predicate's arguments with a solution.
using Bind = bool (*)(const Walk& walk, term_t args, const Pair& solution);

// A bound integer argument that every solution must match; one beyond the
// int range matches none.
struct Wanted {
  bool bound = false;
  bool in_range = true;
  int value = 0;
  bool admits(int v) const { return !bound || (in_range && v == value); }
};

// Reads an argument that is either an input or an output.
bool get_wanted(term_t t, Wanted* wanted) {
  if (!get_optional_int(t, &wanted->bound, &wanted->value)) return false;
  int exact = 0;
  wanted->in_range = !wanted->bound || PL_get_integer(t, &exact);
  return true;
}

struct Walk {
  DataSetPtr set;
  Step step = nullptr;
  Wanted want_a, want_b;                // the integer arguments, when bound
  int fixed = 0;                        // the bound argument the walk follows, when there is one
  int outer = 0;                        // DID (or author id) reached
  int inner = 0;                        // position within its list
  std::vector<int> items;               // a precomputed list of solutions, for key lookups
  std::span<const std::int32_t> cites;  // the DIDs `fixed` cites, for its citations
  bool direct = false;                  // its citations into an unbound Cited: see next_citation
  bool key_given = false;               // the key was bound: the solutions already match it
  bool has_next = false;
  Pair next;

  const RefgroveData& data() const { return *set; }

  // The next pair that the bound arguments admit.
  bool advance() {
    while (step(*this, &next)) {
      if (want_a.admits(next.a) && want_b.admits(next.b)) return true;
    }
    return false;
  }
};

int document_limit(const RefgroveData& d) {
  int n = 0;
  last_did(d, &n);
  return n;
}

bool is_document(const RefgroveData& d, int did) { return has_graph_info(d, did) || has_word_info(d, did); }

// The document's key, or null when it has none ("-" marks a missing key).
const char* key_text(const RefgroveData& d, int did) {
  const char* key = nullptr;
  if (!get_key(d, did, &key)) return nullptr;
  return std::string_view(key) == "-" || *key == '\0' ? nullptr : key;
}

// The author id at position i of `did`'s record unless it was listed before.
bool first_listing(const RefgroveData& d, int did, int i, int* author_id) {
  if (!get_author_id(d, did, i, author_id)) return false;
  for (int k = 0; k < i; ++k) {
    int earlier = 0;
    if (get_author_id(d, did, k, &earlier) && earlier == *author_id) return false;
  }
  return true;
}

bool step_documents(Walk& w, Pair* next) {
  const RefgroveData& d = w.data();
  for (const int limit = document_limit(d); w.outer < limit; ++w.outer) {
    if (is_document(d, w.outer)) {
      next->a = w.outer++;
      return true;
    }
  }
  return false;
}

// Citations of document `fixed`, from the set's packed citations, which
// start_cites has found once for the whole walk.
bool step_cites_of(Walk& w, Pair* next) {
  if (static_cast<std::size_t>(w.inner) >= w.cites.size()) return false;
  next->a = w.fixed;
  next->b = w.cites[static_cast<std::size_t>(w.inner++)];
  return true;
}

// Records citing document `fixed`, through the cited-by index.
bool step_cited_by(Walk& w, Pair* next) {
  if (!get_cited_by(w.data(), w.fixed, w.inner, &next->a)) return false;
  next->b = w.fixed;
  ++w.inner;
  return true;
}

bool step_all_cites(Walk& w, Pair* next) {
  const RefgroveData& d = w.data();
  for (const int limit = document_limit(d); w.outer < limit; ++w.outer, w.inner = 0) {
    int gid = 0;
    if (get_cite(d, w.outer, w.inner, &next->b, &gid)) {
      next->a = w.outer;
      ++w.inner;
      return true;
    }
  }
  return false;
}

bool step_items(Walk& w, Pair* next) {
  if (w.inner >= static_cast<int>(w.items.size())) return false;
  next->a = next->b = w.items[static_cast<std::size_t>(w.inner++)];
  return true;
}

bool step_all_keys(Walk& w, Pair* next) {
  const RefgroveData& d = w.data();
  for (const int limit = document_limit(d); w.outer < limit; ++w.outer) {
    if (key_text(d, w.outer) != nullptr) {
      next->b = w.outer++;
      return true;
    }
  }
  return false;
}

// Documents of author `fixed`, through the author index.
bool step_author_docs(Walk& w, Pair* next) {
  if (!get_author_doc(w.data(), w.fixed, w.inner, &next->b)) return false;
  next->a = w.fixed;
  ++w.inner;
  return true;
}

// Authors of document `fixed`, first author first, each once.
bool step_doc_authors(Walk& w, Pair* next) {
  int n = 0;
  author_count(w.data(), w.fixed, &n);
  for (; w.inner < n; ++w.inner) {
    if (first_listing(w.data(), w.fixed, w.inner, &next->a)) {
      next->b = w.fixed;
      ++w.inner;
      return true;
    }
  }
  return false;
}

bool step_all_authorships(Walk& w, Pair* next) {
  const RefgroveData& d = w.data();
  for (const int limit = document_limit(d); w.outer < limit; ++w.outer, w.inner = 0) {
    w.fixed = w.outer;
    if (step_doc_authors(w, next)) return true;
  }
  return false;
}

bool bind_first(const Walk&, term_t args, const Pair& s) { return PL_unify_integer(args, s.a); }

bool bind_second(const Walk&, term_t args, const Pair& s) { return PL_unify_integer(args + 1, s.b); }

bool bind_both(const Walk&, term_t args, const Pair& s) {
  return PL_unify_integer(args, s.a) && PL_unify_integer(args + 1, s.b);
}

// A key given as a string matches the document's key atom, so a given key
// is not unified again.
bool bind_key(const Walk& w, term_t args, const Pair& s) {
  if (w.key_given) return PL_unify_integer(args + 1, s.b);
  const char* key = key_text(w.data(), s.b);
  return key != nullptr && unify_text(args, key) && PL_unify_integer(args + 1, s.b);
}

// The citations of a bound Citing into an unbound Cited, the most frequent
// walk: an unbound argument always unifies, so it needs neither the
// look-ahead nor a frame per solution.
foreign_t next_citation(term_t args, std::unique_ptr<Walk> walk) {
  const std::size_t at = static_cast<std::size_t>(walk->inner++);
  if (at >= walk->cites.size()) return false;
  if (!PL_unify_integer(args + 1, walk->cites[at])) return false;
  if (at + 1 == walk->cites.size()) return true;
  PL_retry_address(walk.release());
}

// Runs a walk: sets it up on the first call (`start` fills in the step and
// position, or returns false to fail at once), resumes it on a redo, frees
// it when pruned.
template <bool (*start)(term_t args, Walk& walk), Bind bind>
foreign_t enumerate(term_t args, int, control_t control) {
  Walk* walk = nullptr;
  switch (PL_foreign_control(control)) {
    case PL_FIRST_CALL: {
      auto fresh = std::make_unique<Walk>();
      fresh->set = loaded_set();
      if (!start(args, *fresh)) return false;
      if (fresh->direct) return next_citation(args, std::move(fresh));
      fresh->has_next = fresh->advance();
      walk = fresh.release();
      break;
    }
    case PL_REDO:
      walk = static_cast<Walk*>(PL_foreign_context_address(control));
      if (walk->direct) return next_citation(args, std::unique_ptr<Walk>(walk));
      break;
    case PL_PRUNED:
      delete static_cast<Walk*>(PL_foreign_context_address(control));
      return true;
  }
  std::unique_ptr<Walk> owned(walk);
  while (walk->has_next) {
    const Pair solution = walk->next;
    walk->has_next = walk->advance();
    // A solution that does not unify is undone before the next is tried.
    const fid_t frame = PL_open_foreign_frame();
    const bool bound = bind(*walk, args, solution);
    const bool raised = !bound && PL_exception(0) != 0;
    if (bound || raised) {
      PL_close_foreign_frame(frame);
      if (raised) return false;
      if (!walk->has_next) return true;
      PL_retry_address(owned.release());
    }
    PL_discard_foreign_frame(frame);
  }
  return false;
}

bool start_documents(term_t args, Walk& w) {
  bool bound = false;
  int did = 0;
  if (!get_optional_int(args, &bound, &did)) return false;
  if (bound && !is_document(w.data(), did)) return false;
  if (bound) w.items = {did};
  w.step = bound ? step_items : step_documents;
  return true;
}

bool start_cites(term_t args, Walk& w) {
  if (!get_wanted(args, &w.want_a) || !get_wanted(args + 1, &w.want_b)) return false;
  w.fixed = w.want_a.bound ? w.want_a.value : w.want_b.value;
  w.step = w.want_a.bound ? step_cites_of : w.want_b.bound ? step_cited_by : step_all_cites;
  if (w.want_a.bound) {  // the citations are found once, not once per answer
    if (!w.want_a.in_range || !SetTables::of(w.set).citations(w.fixed, &w.cites)) return false;
    w.direct = !w.want_b.bound;
  }
  return true;
}

bool start_key_did(term_t args, Walk& w) {
  bool key_bound = false;
  if (!check_optional_text(args, &key_bound) || !get_wanted(args + 1, &w.want_b)) return false;
  w.step = step_items;
  w.key_given = key_bound;
  if (key_bound) {
    const RefgroveData& d = w.data();
    for (const std::string& key : stored_forms(args)) {
      int doc = 0;
      for (int i = 0; get_key_doc(d, key.c_str(), i, &doc); ++i) w.items.push_back(doc);
    }
    std::sort(w.items.begin(), w.items.end());
  } else if (w.want_b.bound) {
    w.items = {w.want_b.value};
  } else {
    w.step = step_all_keys;
  }
  return true;
}

bool start_author_document(term_t args, Walk& w) {
  if (!get_wanted(args, &w.want_a) || !get_wanted(args + 1, &w.want_b)) return false;
  w.fixed = w.want_a.bound ? w.want_a.value : w.want_b.value;
  w.step = w.want_a.bound ? step_author_docs : w.want_b.bound ? step_doc_authors : step_all_authorships;
  return true;
}

using AuthorByName = int (*)(const RefgroveData& d, const char* text, int i, int* author_id);

// refgrove_author_named/2 and refgrove_author_prefix/2: the author ids that
// `get` finds for the name given, in its order.
template <AuthorByName get>
bool start_author_by_name(term_t args, Walk& w) {
  bool name_bound = false;
  if (!check_optional_text(args, &name_bound) || !get_wanted(args + 1, &w.want_b)) return false;
  if (!name_bound) return PL_instantiation_error(args);
  w.step = step_items;
  for (const std::string& name : stored_forms(args)) {
    int id = 0;
    for (int i = 0; get(w.data(), name.c_str(), i, &id); ++i) w.items.push_back(id);
  }
  return true;
}

// refgrove_abstract/2, refgrove_authors/2: a list of texts gathered with
// `count` and `get`; fails when `count` finds no part. A text that the data
// lacks (an id outside its table) is left out.
template <CountLookup count, TextLookup get>
foreign_t text_list(term_t args, int, control_t) {
  int did = 0, n = 0;
  if (!get_int_input(args, &did)) return false;
  const RefgroveData& d = current_data();
  if (!count(d, did, &n)) return false;
  std::vector<std::string_view> texts;
  for (int i = 0; i < n; ++i) {
    const char* text = nullptr;
    if (get(d, did, i, &text)) texts.emplace_back(text);
  }
  return unify_text_atoms(args + 1, texts);
}

// refgrove_citations/2: the DIDs a document cites, from the set's packed
// citations.
foreign_t citation_list(term_t args, int, control_t) {
  int did = 0;
  return get_int_input(args, &did) && unify_citations(args + 1, loaded_set(), did);
}

// refgrove_title/2: the title's words as the atoms kept with the set.
foreign_t title_list(term_t args, int, control_t) {
  int did = 0;
  return get_int_input(args, &did) && unify_title(args + 1, loaded_set(), did);
}

// An abstract is there whenever the document has word data, even empty.
int abstract_size(const RefgroveData& d, int did, int* out) {
  abstract_length(d, did, out);
  return has_word_info(d, did);
}

constexpr ForeignPredicate kPredicates[] = {
    {"refgrove_document", 1, guarded<enumerate<start_documents, bind_first>>, true},
    {"refgrove_cites", 2, guarded<enumerate<start_cites, bind_both>>, true},
    {"refgrove_citations", 2, guarded<citation_list>, false},
    {"refgrove_key_did", 2, guarded<enumerate<start_key_did, bind_key>>, true},
    {"refgrove_author_document", 2, guarded<enumerate<start_author_document, bind_both>>, true},
    {"refgrove_author_named", 2, guarded<enumerate<start_author_by_name<get_author_named>, bind_second>>, true},
    {"refgrove_author_prefix", 2, guarded<enumerate<start_author_by_name<get_author_prefix>, bind_second>>, true},
    {"refgrove_title", 2, guarded<title_list>, false},
    {"refgrove_abstract", 2, guarded<text_list<abstract_size, get_abstract_word>>, false},
    {"refgrove_authors", 2, guarded<text_list<author_count, get_author>>, false},
};

}  // namespace

std::span<const ForeignPredicate> relation_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
