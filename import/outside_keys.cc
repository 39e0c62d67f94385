#include "import/outside_keys.h"

namespace refgrove {

std::string outside_keys_file(std::int64_t first_did, const std::vector<std::string>& keys) {
  std::string text;
  std::int64_t did = first_did;
  for (const std::string& key : keys) {
    text += std::to_string(did++);
    text += '\t';
    text += key;
    text += '\n';
  }
  return text;
}

}  // namespace refgrove
