// For the readers' tests: what a reader's records become, the dumps that
// a work set writes of them, and the bad records it reported; and input
// files written compressed.
#ifndef REFGROVE_IMPORT_READ_INTO_DUMPS_H_
#define REFGROVE_IMPORT_READ_INTO_DUMPS_H_

#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "import/imported_work.h"

namespace refgrove {

struct Dumps {
  std::string graph, words;
  std::string outside;  // the outside keys, each followed by a blank
  std::string errors;   // each bad record's message on a line
  bool operator==(const Dumps&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Dumps& d);

// Runs `read` with a sink into a new work set (of `years`), then writes
// the set's dumps. `counts`, when given, receives what the writing counted.
Dumps read_into_dumps(const std::function<void(const WorkSink&)>& read, std::optional<YearRange> years = std::nullopt,
                      WorkSetCounts* counts = nullptr);

// Writes `bytes` gzip-compressed to `path`; throws std::runtime_error when
// it cannot.
void write_gzip(const std::string& path, const std::string& bytes);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_READ_INTO_DUMPS_H_
