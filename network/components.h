// The connected pieces of the two graphs: the weakly connected components
// of the citation graph and the components of the co-author graph.
//
// Components are numbered from 0 by size descending, then by their smallest
// member (DID or author id), so component 0 is the largest.
#ifndef REFGROVE_NETWORK_COMPONENTS_H_
#define REFGROVE_NETWORK_COMPONENTS_H_

#include <cstdint>
#include <vector>

#include "core/data_set.h"

namespace refgrove {

struct Components {
  std::vector<std::int32_t> component_of;  // by node: citation-graph node or author id
  std::vector<std::int64_t> sizes;         // by component id, so descending

  std::int64_t count() const { return static_cast<std::int64_t>(sizes.size()); }
};

struct ComponentOf {
  std::int32_t id;
  std::int64_t size;
};

const Components& citation_components(const RefgroveData& d);
const Components& coauthor_components(const RefgroveData& d);

// The component of a document or an author. Throw NetworkArgumentError for
// a DID without a graph record or an author id outside the author table.
ComponentOf document_component(const RefgroveData& d, std::int32_t did);
ComponentOf author_component(const RefgroveData& d, std::int32_t author);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_COMPONENTS_H_
