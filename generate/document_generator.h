// Synthetic documents at any scale, the same whatever they are written as
// (text dumps, or works in a source's own format), for benchmarks and tests.
//
// On average a document has about 10 citations of earlier documents, 9
// title words, 2.5 authors and 120 words in its abstract (punctuation
// included), drawn from a Zipf-distributed vocabulary; DIDs ascend with
// gaps; keys and years are sometimes missing, and a few words are not ASCII.
// The documents depend only on the count and the seed: the generator uses
// no library distribution, so they are the same on every platform.
#ifndef REFGROVE_GENERATE_DOCUMENT_GENERATOR_H_
#define REFGROVE_GENERATE_DOCUMENT_GENERATOR_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace refgrove {

struct DocumentGeneratorOptions {
  std::int64_t docs = 1000;
  std::uint64_t seed = 2002;
};

struct GeneratedDocument {
  std::int32_t did = 0;
  std::string key;  // empty when missing
  std::optional<std::int32_t> year;
  std::vector<std::int32_t> cited;  // DIDs of earlier documents, repeats possible
  std::vector<std::string> title;   // words, the first capitalised
  std::vector<std::string> authors;
  bool has_abstract = false;
  // Words and punctuation (",", "."), pointing into the generator's own
  // vocabulary: valid until the generator is destroyed.
  std::vector<std::string_view> abstract;
};

class DocumentGenerator {
 public:
  explicit DocumentGenerator(const DocumentGeneratorOptions& options);
  ~DocumentGenerator();

  // The next document into `doc`; false after the last.
  bool next(GeneratedDocument* doc);
  std::int64_t count() const { return count_; }

 private:
  struct State;
  std::unique_ptr<State> state_;
  std::int64_t count_, made_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_GENERATE_DOCUMENT_GENERATOR_H_
