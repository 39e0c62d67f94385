// Tokenizers over input streams: a plain one, one whose input ends at the
// first NUL byte, and one that also copies what it reads to an output file.
#ifndef REFGROVE_TOKENIZER_STREAM_TOKENIZER_H_
#define REFGROVE_TOKENIZER_STREAM_TOKENIZER_H_

#include <fstream>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

#include "tokenizer/tokenizer.h"

namespace refgrove {

// Reads a std::istream, given or opened from a file name.
//
// Characters are taken from the stream's buffer in chunks rather than with
// istream::get one at a time, and handed to the character layer as direct
// characters. What the tokenizer sees does not change: stream_ok() turns
// false, and the stream gets its end and failure bits, exactly when a read
// past the last character is asked for, as with get(). Characters fetched
// but not yet tokenized are given back to a seekable stream when the
// tokenizer lets go of it.
//
// A subclass that filters characters overrides both stream_get and
// stream_ok and reads with read_stream_char(), as StreamEOFTokenizer does;
// it must not call StreamTokenizer::stream_get, which hands characters over
// to the character layer behind the subclass's back.
class StreamTokenizer : public Tokenizer {
 public:
  std::unique_ptr<std::filebuf> file_buffer;  // set only by open_tokens(name)
  std::istream* stream;                       // owned only with file_buffer

  StreamTokenizer(std::istream* in, TokenizerLanguage* language_);
  explicit StreamTokenizer(std::istream* in);
  explicit StreamTokenizer(TokenizerLanguage* language_);
  StreamTokenizer();
  ~StreamTokenizer() override;

  int stream_ok() override;
  int stream_get() override;

  // Reads `in` (not owned); `name` is kept, not copied, for messages.
  void open_tokens(std::istream* in, const char* name);
  // Opens the file `name`. On failure prints the system error with perror
  // and throws ParserError "can't open: '<name>'".
  void open_tokens(const char* name);
  // Closes a file opened by open_tokens(name); a caller's stream is left
  // alone.
  void close_tokens();

 protected:
  // The next character of the stream as istream::get returns it (0..255, or
  // EOF after setting the stream's end and failure bits).
  int read_stream_char() {
    if (chunk_next_ != chunk_end_) return static_cast<unsigned char>(*chunk_next_++);
    return refill();
  }

 private:
  int refill();
  // Gives fetched but unread characters back to the stream, if it can seek,
  // and forgets them.
  void give_back();

  static constexpr std::size_t kChunkSize = 1 << 16;
  std::unique_ptr<char[]> chunk_;
  char* chunk_next_ = nullptr;
  char* chunk_end_ = nullptr;
};

// A stream whose input ends at the first NUL byte (delivered as a blank) or
// at the stream's end; nothing after the NUL byte is read.
class StreamEOFTokenizer : public StreamTokenizer {
 public:
  int eof_seen;  // 1 once the NUL byte has been read

  StreamEOFTokenizer(std::istream* in, TokenizerLanguage* language_);
  explicit StreamEOFTokenizer(std::istream* in);
  explicit StreamEOFTokenizer(TokenizerLanguage* language_);
  StreamEOFTokenizer();

  int stream_ok() override;
  int stream_get() override;
};

// A StreamEOFTokenizer that copies the input's layout to an output file: the
// white space skipped before each token is written while it is read, and the
// one white-space character that ended a word or number is remembered and
// written after the token by the output operations. A filter reads every
// token with next_token_output, or writes its own replacement followed by
// output_term_space(). Comments are dropped, except for their white space.
// Until open_output has succeeded, writes are ignored.
class StreamEOFCopyTokenizer : public StreamEOFTokenizer {
 public:
  static constexpr char kNoSpace = static_cast<char>(0xFF);

  std::unique_ptr<std::filebuf> output_buffer;
  std::unique_ptr<std::ostream> output;
  int reading_token;  // 0 while white space before a token is skipped
  char term_space;    // what ended the last word or number; kNoSpace: none

  StreamEOFCopyTokenizer(std::istream* in, TokenizerLanguage* language_);
  explicit StreamEOFCopyTokenizer(std::istream* in);
  explicit StreamEOFCopyTokenizer(TokenizerLanguage* language_);
  StreamEOFCopyTokenizer();
  ~StreamEOFCopyTokenizer() override;

  int token_read_sig_char() override;
  void on_trailing_space() override;
  int stream_get() override;

  // Creates or truncates the file `name`; throws ParserError
  // "can't open: <name>" at an unknown position when that fails.
  void open_output(const char* name);
  void close_output();

  void output_term_space();
  void output_term_space(char c);
  void output_token_and_space();
  std::string& next_token_output();
  std::string& try_next_token_output();
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_STREAM_TOKENIZER_H_
