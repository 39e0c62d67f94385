// A tokenizer over a NUL-terminated string in memory.
#ifndef REFGROVE_TOKENIZER_STRING_TOKENIZER_H_
#define REFGROVE_TOKENIZER_STRING_TOKENIZER_H_

#include "tokenizer/tokenizer.h"

namespace refgrove {

// The text is not copied and must outlive the tokenizer (or the next
// set_string). Used, among others, to cut element texts such as "Title:"
// into tokens when a language is built.
class StringTokenizer : public Tokenizer {
 public:
  const char* text;
  int length;  // strlen(text)
  int index;   // index of the character last delivered; -1 before the first

  StringTokenizer(const char* text_, TokenizerLanguage* language_);
  explicit StringTokenizer(TokenizerLanguage* language_);
  explicit StringTokenizer(const char* text_);
  StringTokenizer();

  void init();
  void init(const char* text_);
  // Starts over on another string, from row 1.
  void set_string(const char* text_);

  int stream_ok() override { return index < length; }
  int stream_get() override;
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_STRING_TOKENIZER_H_
