#include "tokenizer/stream_tokenizer.h"

#include <algorithm>
#include <cstdio>

namespace refgrove {

// ---- StreamTokenizer ------------------------------------------------------

StreamTokenizer::StreamTokenizer(std::istream* in, TokenizerLanguage* language_) : Tokenizer(language_), stream(in) {}

StreamTokenizer::StreamTokenizer(std::istream* in) : Tokenizer(), stream(in) {}

StreamTokenizer::StreamTokenizer(TokenizerLanguage* language_) : Tokenizer(language_), stream(nullptr) {}

StreamTokenizer::StreamTokenizer() : Tokenizer(), stream(nullptr) {}

StreamTokenizer::~StreamTokenizer() {
  close_tokens();
  give_back();
}

int StreamTokenizer::stream_ok() { return stream != nullptr && stream->good(); }

int StreamTokenizer::stream_get() {
  const int c = read_stream_char();
  // Hand the rest of the chunk to the character layer, which then reads it
  // without calling back here until it is used up.
  direct_next_ = chunk_next_;
  direct_end_ = chunk_end_;
  chunk_next_ = chunk_end_;
  return c;
}

int StreamTokenizer::refill() {
  // As istream::get: a stream that is not good delivers nothing and fails.
  if (stream == nullptr) return EOF;
  if (!stream->good()) {
    stream->setstate(std::ios_base::failbit);
    return EOF;
  }
  if (stream->tie() != nullptr) stream->tie()->flush();
  std::streambuf* buf = stream->rdbuf();
  if (buf == nullptr) {
    stream->setstate(std::ios_base::badbit);
    return EOF;
  }
  if (!chunk_) chunk_.reset(new char[kChunkSize]);
  // Take only what the buffer can deliver without waiting, so that a pipe or
  // terminal is not read further ahead than get() would read it. When it
  // reports nothing ready, wait for one character the ordinary way.
  const std::streamsize ready = buf->in_avail();
  std::streamsize n = 0;
  if (ready > 0) {
    n = buf->sgetn(chunk_.get(), std::min<std::streamsize>(ready, kChunkSize));
  }
  if (n <= 0) {
    const int c = buf->sbumpc();
    if (c == EOF) {
      stream->setstate(std::ios_base::eofbit | std::ios_base::failbit);
      return EOF;
    }
    chunk_[0] = static_cast<char>(c);
    n = 1;
  }
  chunk_next_ = chunk_.get();
  chunk_end_ = chunk_.get() + n;
  return static_cast<unsigned char>(*chunk_next_++);
}

void StreamTokenizer::give_back() {
  const std::streamoff unread = (direct_end_ - direct_next_) + (chunk_end_ - chunk_next_);
  direct_next_ = direct_end_ = nullptr;
  chunk_next_ = chunk_end_ = nullptr;
  if (unread == 0 || stream == nullptr || stream->rdbuf() == nullptr) return;
  stream->rdbuf()->pubseekoff(-unread, std::ios_base::cur, std::ios_base::in);
}

void StreamTokenizer::open_tokens(std::istream* in, const char* name) {
  close_tokens();
  give_back();
  stream = in;
  file_name = name;
}

void StreamTokenizer::open_tokens(const char* name) {
  close_tokens();
  give_back();
  stream = nullptr;
  file_name = name;
  file_buffer.reset(new std::filebuf());
  if (file_buffer->open(name, std::ios_base::in | std::ios_base::binary) == nullptr) {
    std::perror("StreamTokenizer::open_tokens");
    throw error("can't open: '" + std::string(name) + "'");
  }
  stream = new std::istream(file_buffer.get());
}

void StreamTokenizer::close_tokens() {
  if (!file_buffer) return;
  direct_next_ = direct_end_ = nullptr;
  chunk_next_ = chunk_end_ = nullptr;
  file_buffer->close();
  file_buffer.reset();
  delete stream;
  stream = nullptr;
}

// ---- StreamEOFTokenizer ---------------------------------------------------

StreamEOFTokenizer::StreamEOFTokenizer(std::istream* in, TokenizerLanguage* language_)
    : StreamTokenizer(in, language_), eof_seen(0) {}

StreamEOFTokenizer::StreamEOFTokenizer(std::istream* in) : StreamTokenizer(in), eof_seen(0) {}

StreamEOFTokenizer::StreamEOFTokenizer(TokenizerLanguage* language_) : StreamTokenizer(language_), eof_seen(0) {}

StreamEOFTokenizer::StreamEOFTokenizer() : StreamTokenizer(), eof_seen(0) {}

int StreamEOFTokenizer::stream_ok() { return eof_seen == 0 && StreamTokenizer::stream_ok(); }

int StreamEOFTokenizer::stream_get() {
  if (eof_seen) return ' ';  // nothing after the NUL byte is read
  const int c = read_stream_char();
  if (c == 0) {
    eof_seen = 1;
    return ' ';
  }
  return c;
}

// ---- StreamEOFCopyTokenizer -----------------------------------------------

StreamEOFCopyTokenizer::StreamEOFCopyTokenizer(std::istream* in, TokenizerLanguage* language_)
    : StreamEOFTokenizer(in, language_), reading_token(1), term_space(kNoSpace) {
  plain_hooks_ = false;
}

StreamEOFCopyTokenizer::StreamEOFCopyTokenizer(std::istream* in)
    : StreamEOFTokenizer(in), reading_token(1), term_space(kNoSpace) {
  plain_hooks_ = false;
}

StreamEOFCopyTokenizer::StreamEOFCopyTokenizer(TokenizerLanguage* language_)
    : StreamEOFTokenizer(language_), reading_token(1), term_space(kNoSpace) {
  plain_hooks_ = false;
}

StreamEOFCopyTokenizer::StreamEOFCopyTokenizer() : StreamEOFTokenizer(), reading_token(1), term_space(kNoSpace) {
  plain_hooks_ = false;
}

StreamEOFCopyTokenizer::~StreamEOFCopyTokenizer() { close_output(); }

int StreamEOFCopyTokenizer::token_read_sig_char() {
  reading_token = 0;
  term_space = kNoSpace;
  const int c = Tokenizer::token_read_sig_char();
  reading_token = 1;
  return c;
}

void StreamEOFCopyTokenizer::on_trailing_space() {
  // The end of the input also ends a word, but no character of the input
  // did: last_space_char is then left over from earlier white space.
  term_space = at_eof ? kNoSpace : last_space_char;
}

int StreamEOFCopyTokenizer::stream_get() {
  if (eof_seen) return ' ';
  const int c = read_stream_char();
  if (c == 0) {
    eof_seen = 1;
    return ' ';
  }
  if (c != EOF && reading_token == 0 && language->space_chars.contains(c) && output) {
    output->put(static_cast<char>(c));
  }
  return c;
}

void StreamEOFCopyTokenizer::open_output(const char* name) {
  close_output();
  output_buffer.reset(new std::filebuf());
  if (output_buffer->open(name, std::ios_base::out | std::ios_base::trunc | std::ios_base::binary) == nullptr) {
    throw ParserError("can't open: " + std::string(name), TokenizerPos(), name);
  }
  output.reset(new std::ostream(output_buffer.get()));
}

void StreamEOFCopyTokenizer::close_output() {
  if (!output_buffer) return;
  if (output) output->flush();
  output.reset();
  output_buffer->close();
  output_buffer.reset();
}

void StreamEOFCopyTokenizer::output_term_space() { output_term_space(term_space); }

void StreamEOFCopyTokenizer::output_term_space(char c) {
  if (c != kNoSpace && output) output->put(c);
}

void StreamEOFCopyTokenizer::output_token_and_space() {
  if (output) *output << token;
  output_term_space();
}

std::string& StreamEOFCopyTokenizer::next_token_output() {
  next_token();
  output_token_and_space();
  return token;
}

std::string& StreamEOFCopyTokenizer::try_next_token_output() {
  try_next_token();
  output_token_and_space();
  return token;
}

}  // namespace refgrove
