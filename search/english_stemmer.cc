#include "search/english_stemmer.h"

#include <libstemmer.h>

#include <new>

namespace refgrove {

void EnglishStemmer::Delete::operator()(sb_stemmer* s) const { sb_stemmer_delete(s); }

EnglishStemmer::EnglishStemmer() : stemmer_(sb_stemmer_new("english", "UTF_8")) {
  if (stemmer_ == nullptr) throw std::bad_alloc();
}

std::string EnglishStemmer::stem(std::string_view folded) {
  const sb_symbol* stemmed = sb_stemmer_stem(stemmer_.get(), reinterpret_cast<const sb_symbol*>(folded.data()),
                                             static_cast<int>(folded.size()));
  // Null only when memory runs out.
  if (stemmed == nullptr) throw std::bad_alloc();
  return std::string(reinterpret_cast<const char*>(stemmed),
                     static_cast<std::size_t>(sb_stemmer_length(stemmer_.get())));
}

}  // namespace refgrove
