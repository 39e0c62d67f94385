#include "preproc/format_limits.h"

#include <cmath>

#include "words/word_files.h"

namespace refgrove {

namespace {

// `n` to two significant digits with thousands separators: "5,900,000".
std::string roughly(double n) {
  if (n >= 100) {
    const double unit = std::pow(10.0, std::floor(std::log10(n)) - 1);
    n = std::round(n / unit) * unit;
  }
  const std::string digits = std::to_string(static_cast<std::int64_t>(std::round(n)));
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

// "about 5,900,000 documents like those read so far": the documents of the
// size of those read that fit under `limit` of a quantity that they took
// `used` of.
std::string documents_that_fit(const RunSize& size, std::int64_t limit, std::int64_t used) {
  const double fit = static_cast<double>(size.documents) * static_cast<double>(limit) / static_cast<double>(used);
  if (fit < 0.5) return "less than one document like those read so far";
  const std::string n = roughly(fit);
  return "about " + n + (n == "1" ? " document" : " documents") + " like those read so far";
}

}  // namespace

std::string format_limit_message(const FormatLimits& limits, const RunSize& size) {
  if (size.word_data_bytes > limits.word_data_bytes) {
    return "the dumps hold more abstract words than a data directory can: word-data can have at most " +
           std::to_string(limits.word_data_bytes) + " bytes (" + std::to_string(limits.word_data_bytes / kWordIdBytes) +
           " words), as far as the 32-bit offsets of word-idx reach, which is " +
           documents_that_fit(size, limits.word_data_bytes, size.word_data_bytes);
  }
  return "the dumps hold more distinct words than a data directory can: word ids have 24 bits, so the abstracts "
         "and titles together can have at most " +
         std::to_string(limits.distinct_words) + " distinct words, which is " +
         documents_that_fit(size, limits.distinct_words, size.distinct_words);
}

}  // namespace refgrove
