#include "generate/document_generator.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace refgrove {

namespace {

// splitmix64: small, fast, and fully specified, unlike the library's
// distributions.
class Rng {
 public:
  explicit Rng(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // Uniform in [0, 1).
  double unit() { return static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0); }
  // Uniform in [0, n).
  std::int64_t below(std::int64_t n) { return static_cast<std::int64_t>(unit() * static_cast<double>(n)); }
  bool chance(double p) { return unit() < p; }

 private:
  std::uint64_t state_;
};

// Sampling ranks 0..n-1 with probability proportional to 1/(rank+1)^s, in
// constant time per draw (Vose's alias method).
class ZipfSampler {
 public:
  ZipfSampler(std::size_t n, double s) : prob_(n), alias_(n) {
    std::vector<double> p(n);
    double sum = 0;
    for (std::size_t r = 0; r < n; ++r) sum += p[r] = 1.0 / std::pow(static_cast<double>(r + 1), s);
    std::vector<std::size_t> small, large;
    for (std::size_t r = 0; r < n; ++r) {
      p[r] = p[r] * static_cast<double>(n) / sum;
      (p[r] < 1.0 ? small : large).push_back(r);
    }
    while (!small.empty() && !large.empty()) {
      const std::size_t a = small.back(), b = large.back();
      small.pop_back();
      prob_[a] = p[a];
      alias_[a] = static_cast<std::uint32_t>(b);
      p[b] -= 1.0 - p[a];
      if (p[b] < 1.0) {
        large.pop_back();
        small.push_back(b);
      }
    }
    for (std::size_t r : small) prob_[r] = 1.0;
    for (std::size_t r : large) prob_[r] = 1.0;
  }

  std::size_t sample(Rng& rng) const {
    const std::size_t r = static_cast<std::size_t>(rng.below(static_cast<std::int64_t>(prob_.size())));
    return rng.unit() < prob_[r] ? r : alias_[r];
  }

 private:
  std::vector<double> prob_;
  std::vector<std::uint32_t> alias_;
};

// The most frequent words of abstracts, most frequent first; the rest of
// the vocabulary is made of syllables.
const char* const kCommonWords[] = {
    "the",      "of",       "and",      "a",           "to",         "in",        "is",          "we",
    "for",      "that",     "this",     "on",          "with",       "are",       "by",          "as",
    "an",       "be",       "which",    "from",        "it",         "can",       "our",         "paper",
    "these",    "show",     "results",  "based",       "method",     "model",     "data",        "algorithm",
    "problem",  "approach", "new",      "using",       "system",     "time",      "graph",       "also",
    "two",      "such",     "networks", "performance", "present",    "not",       "or",          "has",
    "have",     "its",      "between",  "each",        "than",       "set",       "structure",   "analysis",
    "number",   "proposed", "used",     "when",        "more",       "one",       "all",         "first",
    "learning", "function", "given",    "order",       "linear",     "large",     "program",     "language",
    "where",    "how",      "memory",   "query",       "complexity", "efficient", "distributed", "parallel",
    "search",   "bounds",   "optimal",  "logic",       "semantics"};

const char* const kSyllables[] = {"ka",   "lo",  "mi", "ter", "graph", "al",  "gor",   "ith",  "tri", "ne",
                                  "son",  "ve",  "ra", "sta", "tion",  "pro", "cess",  "or",   "di",  "men",
                                  "sion", "par", "ti", "le",  "ex",    "con", "struc", "ture", "ma",  "tic",
                                  "bi",   "no",  "mo", "de",  "lu",    "ser", "val",   "red",  "qua", "sim",
                                  "plex", "in",  "ar", "cu",  "pha",   "se"};

const char* const kForeignWords[] = {"Erd\xc5\x91s",
                                     "na\xc3\xafve",
                                     "Poincar\xc3\xa9",
                                     "G\xc3\xb6"
                                     "del",
                                     "Schr\xc3\xb6"
                                     "dinger",
                                     "caf\xc3\xa9"};

const char* const kInitials = "ABCDEFGHIJKLMNOPRSTVWY";

constexpr std::size_t kVocabulary = 80000;
constexpr double kZipfExponent = 1.0;

std::string syllable_word(std::uint64_t rank, int min_syllables, int extra) {
  Rng rng(rank * 0x9E3779B97F4A7C15ull + 17);
  const int n = min_syllables + static_cast<int>(rng.below(extra + 1));
  std::string w;
  for (int i = 0; i < n; ++i) w += kSyllables[rng.below(std::size(kSyllables))];
  return w;
}

std::vector<std::string> make_vocabulary() {
  std::vector<std::string> words(std::begin(kCommonWords), std::end(kCommonWords));
  words.reserve(kVocabulary);
  for (std::uint64_t r = words.size(); words.size() < kVocabulary; ++r) words.push_back(syllable_word(r, 2, 1));
  return words;
}

std::string author_name(std::uint64_t a) {
  Rng rng(a * 0xD1B54A32D192ED03ull + 5);
  std::string name(1, kInitials[rng.below(22)]);
  name += ".";
  if (rng.chance(0.3)) {
    name += " ";
    name += kInitials[rng.below(22)];
    name += ".";
  }
  std::string surname = syllable_word(a + 1000003, 2, 1);
  surname[0] = static_cast<char>(surname[0] - 'a' + 'A');
  return name + " " + surname;
}

}  // namespace

struct DocumentGenerator::State {
  explicit State(const DocumentGeneratorOptions& options)
      : rng(options.seed),
        vocabulary(make_vocabulary()),
        words(vocabulary.size(), kZipfExponent),
        // Prolific authors write much; most write little.
        authors(static_cast<std::size_t>(std::max<std::int64_t>(500, options.docs / 2)), 0.8) {}
  Rng rng;
  std::vector<std::string> vocabulary;
  ZipfSampler words, authors;
  std::vector<std::int32_t> dids;  // of the documents made so far
  std::int32_t did = 0;
};

DocumentGenerator::DocumentGenerator(const DocumentGeneratorOptions& options)
    : state_(std::make_unique<State>(options)), count_(std::max<std::int64_t>(options.docs, 0)) {
  state_->dids.reserve(static_cast<std::size_t>(count_));
}

DocumentGenerator::~DocumentGenerator() = default;  // where State is complete

bool DocumentGenerator::next(GeneratedDocument* doc) {
  if (made_ == count_) return false;
  State& s = *state_;
  Rng& rng = s.rng;
  const std::int64_t i = made_++;
  s.did += 1 + (rng.chance(0.1) ? static_cast<std::int32_t>(rng.below(4)) : 0);
  s.dids.push_back(s.did);
  doc->did = s.did;

  std::size_t doc_authors[5];
  const double a = rng.unit();
  const int author_count = a < 0.25 ? 1 : a < 0.55 ? 2 : a < 0.80 ? 3 : a < 0.95 ? 4 : 5;
  for (int k = 0; k < author_count; ++k) doc_authors[k] = s.authors.sample(rng);
  const int year = 1960 + static_cast<int>(42 * std::sqrt(rng.unit()));
  doc->key.clear();
  if (!rng.chance(0.03)) {
    std::string surname = author_name(doc_authors[0]);
    surname = surname.substr(surname.rfind(' ') + 1);
    for (char& c : surname) c = static_cast<char>(c | 0x20);
    doc->key = surname + std::to_string(year % 100 + 100).substr(1);
    if (rng.chance(0.2)) doc->key += static_cast<char>('a' + rng.below(3));
  }
  doc->year.reset();
  if (!rng.chance(0.04)) doc->year = year;

  const int cites = i == 0 ? 0 : static_cast<int>(rng.below(21));
  doc->cited.clear();
  for (int k = 0; k < cites; ++k) doc->cited.push_back(s.dids[static_cast<std::size_t>(rng.below(i))]);

  const int title_words = 4 + static_cast<int>(rng.below(11));
  doc->title.clear();
  for (int k = 0; k < title_words; ++k) {
    // Titles lean to content words: the most common words are drawn less.
    std::size_t rank = s.words.sample(rng);
    if (rank < 25) rank = s.words.sample(rng);
    doc->title.push_back(s.vocabulary[rank]);
    if (k == 0) doc->title.back()[0] = static_cast<char>(doc->title.back()[0] & ~0x20);
  }
  doc->authors.clear();
  for (int k = 0; k < author_count; ++k) doc->authors.push_back(author_name(doc_authors[k]));

  // A few documents have no abstract.
  doc->abstract.clear();
  doc->has_abstract = !rng.chance(0.02);
  if (!doc->has_abstract) return true;
  const int length = 60 + static_cast<int>(rng.below(121));
  for (int k = 0; k < length; ++k) {
    const double p = rng.unit();
    if (p < 0.05) {
      doc->abstract.push_back(",");
    } else if (p < 0.09) {
      doc->abstract.push_back(".");
    } else if (p < 0.0905) {
      doc->abstract.push_back(kForeignWords[rng.below(std::size(kForeignWords))]);
    } else {
      doc->abstract.push_back(s.vocabulary[s.words.sample(rng)]);
    }
  }
  return true;
}

}  // namespace refgrove
