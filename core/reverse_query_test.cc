// The reverse lookups and the real abstract, checked against what the
// forward queries say about the same data.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/data_view.h"
#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

constexpr int kUntouched = 77;

// The items a count operation and its getter give, in getter order. Also
// checks the contract around them: a count of 0 comes with result 0, and
// getters outside 0 .. count - 1 fail without writing.
std::vector<int> listed(const std::function<int(int*)>& count, const std::function<int(int, int*)>& get) {
  int n = kUntouched;
  const int found = count(&n);
  EXPECT_EQ(found, n > 0) << "count " << n;
  std::vector<int> items;
  for (int i = 0; i < n; ++i) {
    int item = kUntouched;
    EXPECT_EQ(get(i, &item), 1) << "item " << i;
    items.push_back(item);
  }
  for (const int i : {-1, n, INT_MAX, INT_MIN}) {
    int item = kUntouched;
    EXPECT_EQ(get(i, &item), 0) << "item " << i;
    EXPECT_EQ(item, kUntouched) << "item " << i;
  }
  return items;
}

std::vector<int> cited_by(int did) {
  return listed([&](int* n) { return refgrove_cited_by_count_1(did, n); },
                [&](int i, int* out) { return refgrove_get_cited_by_1(did, i, out); });
}
std::vector<int> author_docs(int author) {
  return listed([&](int* n) { return refgrove_author_doc_count_1(author, n); },
                [&](int i, int* out) { return refgrove_get_author_doc_1(author, i, out); });
}
std::vector<int> key_docs(const char* key) {
  return listed([&](int* n) { return refgrove_key_doc_count_1(key, n); },
                [&](int i, int* out) { return refgrove_get_key_doc_1(key, i, out); });
}

// What the reverse lookups must answer, found by a scan of every DID with
// the forward queries.
struct ForwardScan {
  std::map<int, std::vector<int>> citing;
  std::map<int, std::vector<int>> documents_of_author;
  std::map<std::string, std::vector<int>> documents_of_key;

  ForwardScan() {
    int last = 0;
    refgrove_last_did_1(&last);
    for (int did = 0; did < last; ++did) {
      int n = 0, a = 0, b = 0;
      refgrove_cite_count_1(did, &n);
      for (int i = 0; i < n; ++i) {
        refgrove_get_cite_1(did, i, &a, &b);
        citing[a].push_back(did);
      }
      refgrove_author_count_1(did, &n);
      for (int i = 0; i < n; ++i) {
        refgrove_get_author_id_1(did, i, &a);
        std::vector<int>& docs = documents_of_author[a];
        if (docs.empty() || docs.back() != did) docs.push_back(did);
      }
      const char* key = nullptr;
      if (refgrove_get_key_1(did, &key) && *key != '\0') documents_of_key[key].push_back(did);
    }
  }
};

// Every lookup against the scan, on the keys the scan found and on keys
// around them that name nothing.
void expect_agrees_with_forward_scan() {
  const ForwardScan scan;
  int last = 0;
  refgrove_last_did_1(&last);
  std::set<int> dids = {INT_MIN, -2, -1, last, last + 1, INT_MAX};
  for (int did = 0; did < last; ++did) dids.insert(did);
  for (const auto& [cited, citing] : scan.citing) dids.insert(cited);
  for (const int did : dids) {
    const auto it = scan.citing.find(did);
    EXPECT_EQ(cited_by(did), it == scan.citing.end() ? std::vector<int>{} : it->second) << "cited " << did;
  }
  for (int author = -2; author < refgrove_get_nb_authors_1() + 2; ++author) {
    const auto it = scan.documents_of_author.find(author);
    EXPECT_EQ(author_docs(author), it == scan.documents_of_author.end() ? std::vector<int>{} : it->second)
        << "author " << author;
  }
  for (const auto& [key, docs] : scan.documents_of_key) {
    EXPECT_EQ(key_docs(key.c_str()), key == "-" ? std::vector<int>{} : docs) << "key " << key;
  }
  for (const char* key : {"", "-", "no such key", "smith9"}) EXPECT_EQ(key_docs(key), std::vector<int>{}) << key;
  EXPECT_EQ(key_docs(nullptr), std::vector<int>{});
}

using ReverseQueryTest = LoadedDataTest;

TEST_F(ReverseQueryTest, SampleAgreesWithForwardScan) {
  preprocess_sample(dir_.path());
  load_quietly(dir_.path());
  expect_agrees_with_forward_scan();
  // The sample is not trivial: 101 is cited by several records, and an
  // author wrote several documents.
  EXPECT_GE(cited_by(101).size(), 3u);
  int n = 0;
  ASSERT_EQ(refgrove_get_author_id_1(104, 0, &n), 1);
  EXPECT_GE(author_docs(n).size(), 3u);
  EXPECT_EQ(key_docs("lee94graph"), std::vector<int>{104});
}

// DID 5 has two records; the later one is the one indexed, and only its
// citations, authors and key count. A record citing one DID twice lists it
// twice; an author listed twice on one record has that document once.
TEST_F(ReverseQueryTest, OnlyTheIndexedRecordCounts) {
  DataDirBuilder docs;
  docs.add({5, "old", 1990, {{1, 7}}, {}, {"Gone"}, {}, true, false});
  docs.add({3, "twice", 1991, {{1, 7}, {2, 7}, {3, 5}}, {}, {"Ann", "Ann"}, {}, true, false});
  docs.add({5, "twice", 1992, {{1, 8}, {2, 3}}, {}, {"Ann", "Bob"}, {}, true, false});
  docs.add({9, "-", 1993, {{1, 2000000}}, {}, {"Bob"}, {}, true, false});
  docs.add({11, "", 1994, {{1, -4}}, {}, {}, {}, true, false});
  load(docs);
  expect_agrees_with_forward_scan();
  const struct {
    int did;
    std::vector<int> citing;
  } cases[] = {{7, {3, 3}}, {8, {5}}, {5, {3}}, {3, {5}}, {2000000, {9}}, {-4, {11}}, {1, {}}};
  for (const auto& c : cases) EXPECT_EQ(cited_by(c.did), c.citing) << "cited " << c.did;
  EXPECT_EQ(key_docs("twice"), (std::vector<int>{3, 5}));
  EXPECT_EQ(key_docs("old"), std::vector<int>{});
  const char* name = nullptr;
  for (int author = 0; refgrove_id2author_1(author, &name); ++author) {
    const std::vector<int> expected = std::string(name) == "Ann"   ? std::vector<int>{3, 5}
                                      : std::string(name) == "Bob" ? std::vector<int>{5, 9}
                                                                   : std::vector<int>{};
    EXPECT_EQ(author_docs(author), expected) << name;
  }
}

// Before any load, and after a reload, the lookups answer for the data set
// that is loaded then (indexes built for the first set are not reused).
TEST_F(ReverseQueryTest, NothingLoadedThenReload) {
  EXPECT_EQ(cited_by(5), std::vector<int>{});
  EXPECT_EQ(author_docs(0), std::vector<int>{});
  EXPECT_EQ(key_docs("a"), std::vector<int>{});
  int n = kUntouched;
  EXPECT_EQ(refgrove_abstract_length_1(3, &n), 0);
  EXPECT_EQ(n, 0);
  load(two_documents());
  EXPECT_EQ(cited_by(5), std::vector<int>{3});
  EXPECT_EQ(key_docs("a"), std::vector<int>{3});
  EXPECT_EQ(author_docs(1), std::vector<int>{3});
  load(sample_documents());
  EXPECT_EQ(cited_by(5), std::vector<int>{});
  EXPECT_EQ(key_docs("a"), std::vector<int>{});
  EXPECT_EQ(cited_by(9), std::vector<int>{2});
  EXPECT_EQ(author_docs(2), (std::vector<int>{2, 9}));
}

// Author ids by name: folded for case and accents, composed or not, exact
// names by id, prefixes by name; the ids of names that differ only in case
// or accents are found together.
TEST_F(ReverseQueryTest, AuthorsByNameIgnoringCase) {
  DataDirBuilder docs;
  docs.add({1, "a", 1990, {}, {}, {"E. Witten", "P. Erdős", "E. WITTEN", "P. Erdo\xCC\x8Bs"}, {}, true, false});
  docs.add({2, "b", 1991, {}, {}, {"e. wittenberg", "Ann", "", "P. Erdos"}, {}, true, false});
  load(docs);
  std::map<std::string, int> id;
  const char* name = nullptr;
  for (int author = 0; refgrove_id2author_1(author, &name); ++author) id[name] = author;
  const auto named = [](const char* text) {
    return listed([&](int* n) { return refgrove_author_named_count_1(text, n); },
                  [&](int i, int* out) { return refgrove_get_author_named_1(text, i, out); });
  };
  const auto with_prefix = [](const char* text) {
    return listed([&](int* n) { return refgrove_author_prefix_count_1(text, n); },
                  [&](int i, int* out) { return refgrove_get_author_prefix_1(text, i, out); });
  };
  const int witten = id["E. Witten"], upper = id["E. WITTEN"], berg = id["e. wittenberg"];
  std::vector<int> erdos = {id["P. Erdős"], id["P. Erdo\xCC\x8Bs"], id["P. Erdos"]};
  std::sort(erdos.begin(), erdos.end());
  std::vector<int> everyone = {id[""], id["Ann"], witten, upper, berg};
  everyone.insert(everyone.end(), erdos.begin(), erdos.end());
  const struct {
    const char* text;
    std::vector<int> named, with_prefix;
  } cases[] = {
      {"e. witten", {witten, upper}, {witten, upper, berg}},
      {"E. Witten", {witten, upper}, {witten, upper, berg}},
      {"E. Witte", {}, {witten, upper, berg}},
      {"p. erdős", erdos, erdos},
      {"P. ERDŐS", erdos, erdos},
      {"p. erdos", erdos, erdos},
      {"P. ERDO\xCC\x8BS", erdos, erdos},  // decomposed
      {"p. erd", {}, erdos},
      {"p. erd\xC5", {}, {}},  // a lone byte is the Latin-1 Å: "p. erda"
      {"ann", {id["Ann"]}, {id["Ann"]}},
      {"", {id[""]}, everyone},
      {"zz", {}, {}},
      {nullptr, {}, {}},
  };
  for (const auto& c : cases) {
    const std::string shown = c.text == nullptr ? "(null)" : c.text;
    EXPECT_EQ(named(c.text), c.named) << shown;
    EXPECT_EQ(with_prefix(c.text), c.with_prefix) << shown;
    if (c.text == nullptr) continue;
    // As a person types them: a trailing "*" asks for the prefix; a name
    // that names nobody is taken as words of names.
    const auto typed = [](std::string_view text) {
      const std::vector<std::int32_t> ids = refgrove::named_authors(*refgrove_data, text);
      return std::vector<int>(ids.begin(), ids.end());
    };
    if (!c.named.empty()) {
      EXPECT_EQ(typed(c.text), c.named) << shown;
    }
    EXPECT_EQ(typed(std::string(c.text) + "*"), c.with_prefix) << shown;
  }
}

// Authors by words of their names, each word at the start of a word of the
// name, in any order; the spellings of one person stand together, in the
// order of their first id, whatever ids lie between.
TEST_F(ReverseQueryTest, AuthorsByWordsWithSpellingsTogether) {
  DataDirBuilder docs;
  docs.add({1, "a", 1990, {}, {}, {"P. Erdős", "P. Page", "E. Witten", "P. ERDOS"}, {}, true, false});
  docs.add({2, "b", 1991, {}, {}, {"L. Witten", "Wittenberg, R.", "P. Erdo\xCC\x8Bs"}, {}, true, false});
  load(docs);
  std::map<std::string, std::int32_t> id;
  const char* name = nullptr;
  for (int author = 0; refgrove_id2author_1(author, &name); ++author) id[name] = author;
  const std::int32_t erdos = id["P. Erdős"], upper = id["P. ERDOS"], decomposed = id["P. Erdo\xCC\x8Bs"];
  const std::int32_t page = id["P. Page"], e_witten = id["E. Witten"], l_witten = id["L. Witten"];
  const std::int32_t berg = id["Wittenberg, R."];
  const struct {
    const char* text;
    std::vector<std::int32_t> typed;  // named_authors: the exact name first, else the words
    std::vector<std::int32_t> words;  // authors_with_words
  } cases[] = {
      {"witten", {e_witten, l_witten, berg}, {e_witten, l_witten, berg}},
      {"erdos", {erdos, upper, decomposed}, {erdos, upper, decomposed}},
      {"p.", {erdos, upper, decomposed, page}, {erdos, upper, decomposed, page}},
      {"erdős p.", {erdos, upper, decomposed}, {erdos, upper, decomposed}},
      {"P. ERDŐS", {erdos, upper, decomposed}, {erdos, upper, decomposed}},
      {"r. wittenberg", {berg}, {berg}},
      {"e. witten", {e_witten}, {e_witten}},
      {"ten", {}, {}},  // inside a word, not at its start
      {"", {}, {}},
      {"  ", {}, {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(refgrove::named_authors(*refgrove_data, c.text), c.typed) << c.text;
    EXPECT_EQ(refgrove::authors_with_words(*refgrove_data, c.text), c.words) << c.text;
  }
}

std::vector<std::string> abstract_of(int did) {
  int n = kUntouched;
  const int found = refgrove_abstract_length_1(did, &n);
  EXPECT_EQ(found, n > 0) << did;
  std::vector<std::string> words;
  const char* text = nullptr;
  for (int i = 0; i < n; ++i) words.push_back(refgrove_get_abstract_word_1(did, i, &text) ? text : "?");
  for (const int i : {-1, n}) {
    text = nullptr;
    EXPECT_EQ(refgrove_get_abstract_word_1(did, i, &text), 0) << did << " word " << i;
    EXPECT_EQ(text, nullptr);
  }
  return words;
}

using Words = std::vector<std::string>;

TEST_F(ReverseQueryTest, AbstractReadsOffsetsAsBytes) {
  load(sample_documents());
  const struct {
    int did;
    Words words;
  } cases[] = {{2, {"we", "study", "graph", "walks"}},
               {6, {"only", "words"}},
               {9, {"more", "walks"}},
               {4, {}},
               {3, {}},
               {-1, {}},
               {INT_MAX, {}}};
  for (const auto& c : cases) EXPECT_EQ(abstract_of(c.did), c.words) << "did " << c.did;
}

// Headers written by hand: runs cut by the end of "word-data", runs that
// end before they start, a negative offset, and one that is not a multiple
// of 3 (its word ids are read across the ids as written, and name no word).
TEST_F(ReverseQueryTest, AbstractOfDamagedHeaders) {
  write_word_table(dir_.path(), {"a", "b", "c", "d"});
  write_word_idx(dir_.path(), {{1, 0}, {2, 6}, {3, 4}, {4, -3}, {5, 2}, {6, 9}, {-1, 15}});
  write_word_data(dir_.path(), {0, 1, 2});  // 9 bytes: "a b c"
  load_quietly(dir_.path());
  const struct {
    int did;
    Words words;
  } cases[] = {{1, {"a", "b"}}, {2, {}}, {3, {}}, {4, {}}, {5, {"?", "?"}}, {6, {}}};
  for (const auto& c : cases) EXPECT_EQ(abstract_of(c.did), c.words) << "did " << c.did;
}

// The sample's first abstract is read where it was written by both
// readings, but word_count reports three times its length.
TEST_F(ReverseQueryTest, SampleAbstractsAgainstWordCount) {
  preprocess_sample(dir_.path());
  load_quietly(dir_.path());
  const int first = refgrove_data->word_data->doc_info[0].did;
  int length = 0, count = 0;
  ASSERT_EQ(refgrove_abstract_length_1(first, &length), 1);
  ASSERT_EQ(refgrove_word_count_1(first, &count), 1);
  EXPECT_EQ(count, 3 * length);
  const char* word = nullptr;
  const char* abstract_word = nullptr;
  for (int i = 0; i < length; ++i) {
    ASSERT_EQ(refgrove_get_word_1(first, i, &word) + refgrove_get_abstract_word_1(first, i, &abstract_word), 2);
    EXPECT_STREQ(word, abstract_word) << i;
  }
  // Together the abstracts cover "word-data" once.
  int total = 0, last = 0;
  refgrove_last_did_1(&last);
  for (int did = 0; did < last; ++did) total += refgrove_abstract_length_1(did, &length) ? length : 0;
  EXPECT_EQ(3 * total, refgrove_data->word_data->mapped_bytes());
}

}  // namespace

}  // namespace refgrove
