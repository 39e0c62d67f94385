// The most that a data directory can hold. word-idx gives where each
// document's words start in word-data as a signed 32-bit byte offset, so
// word-data can have at most 2^31 - 1 bytes; word-data and the titles of
// graph_data store word ids in 3 bytes, so the word table can have at most
// 2^24 distinct words. A checked run stops with FormatLimitError
// (preprocess.h) as soon as its dumps pass either limit, rather than write
// offsets and ids that wrap around.
#ifndef REFGROVE_PREPROC_FORMAT_LIMITS_H_
#define REFGROVE_PREPROC_FORMAT_LIMITS_H_

#include <cstdint>
#include <limits>
#include <string>

namespace refgrove {

struct FormatLimits {
  std::int64_t word_data_bytes = std::numeric_limits<std::int32_t>::max();
  std::int64_t distinct_words = std::int64_t{1} << 24;
};

// A run's size so far: word-data's bytes, the distinct words of the table
// and the documents read.
struct RunSize {
  std::int64_t word_data_bytes = 0;
  std::int64_t distinct_words = 0;
  std::int64_t documents = 0;
};

inline bool within(const FormatLimits& limits, const RunSize& size) {
  return size.word_data_bytes <= limits.word_data_bytes && size.distinct_words <= limits.distinct_words;
}

// For a run of `size` that is not within `limits`: one sentence with the
// limit passed and roughly how many documents of the kind read so far fit.
std::string format_limit_message(const FormatLimits& limits, const RunSize& size);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_FORMAT_LIMITS_H_
