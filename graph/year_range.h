// A closed range of record years: which documents a ranking keeps, which
// works an import keeps.
#ifndef REFGROVE_GRAPH_YEAR_RANGE_H_
#define REFGROVE_GRAPH_YEAR_RANGE_H_

#include <cstdint>
#include <optional>

namespace refgrove {

struct YearRange {
  std::int32_t from = 0, to = 0;
  // A year that is unknown lies in no range.
  bool contains(std::optional<std::int32_t> year) const { return year && *year >= from && *year <= to; }
};

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_YEAR_RANGE_H_
