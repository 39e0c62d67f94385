// The file "outside-keys" of an imported data directory: the source ids of
// the works that the set cites but does not hold. Their citations carry
// DIDs after those of the set's works (imported_work.h), which no graph
// record names; this file names them.
//
// Text, one outside work per line, in DID order:
//
//   DID<TAB>KEY<LF>
//
//   DID  decimal, from the number of works in the set + 1, one more on each
//        line
//   KEY  the source's id of the work (W2741809807), bytes without a blank,
//        tab or line end
//
// A data directory preprocessed from dumps has no such file. When there, the
// manifest lists it and `refgrove check` compares it.
#ifndef REFGROVE_IMPORT_OUTSIDE_KEYS_H_
#define REFGROVE_IMPORT_OUTSIDE_KEYS_H_

#include <cstdint>
#include <string>
#include <vector>

namespace refgrove {

// The file's contents for the keys `keys`, the first one's DID being
// `first_did`.
std::string outside_keys_file(std::int64_t first_did, const std::vector<std::string>& keys);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_OUTSIDE_KEYS_H_
