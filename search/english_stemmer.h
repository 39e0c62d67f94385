// EnglishStemmer: the Snowball English stemmer (libstemmer), which maps the
// forms of a word to one stem ("holes", "hole" -> "hole"; "running" ->
// "run"), for search that finds a word whatever its ending.
//
// A stemmer keeps working state between calls, so one object must never be
// used by two threads at once: make one per thread or per call.
#ifndef REFGROVE_SEARCH_ENGLISH_STEMMER_H_
#define REFGROVE_SEARCH_ENGLISH_STEMMER_H_

#include <memory>
#include <string>
#include <string_view>

struct sb_stemmer;

namespace refgrove {

class EnglishStemmer {
 public:
  // Throws std::bad_alloc when libstemmer cannot make one.
  EnglishStemmer();

  // The stem of `folded`, a word already folded (core/text_folding.h):
  // lower case, UTF-8.
  std::string stem(std::string_view folded);

 private:
  struct Delete {
    void operator()(sb_stemmer* s) const;
  };
  std::unique_ptr<sb_stemmer, Delete> stemmer_;
};

}  // namespace refgrove

#endif  // REFGROVE_SEARCH_ENGLISH_STEMMER_H_
