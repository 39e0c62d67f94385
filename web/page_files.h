// The explorer's page: its files, embedded into the binary at build time
// (web/embed_files.cmake writes the table from web/page/ and the vendored
// drawing library).
#ifndef REFGROVE_WEB_PAGE_FILES_H_
#define REFGROVE_WEB_PAGE_FILES_H_

#include <span>
#include <string_view>

namespace refgrove::web {

struct PageFile {
  std::string_view path;  // as requested: "/index.html"
  std::string_view content_type;
  std::string_view content;
};

std::span<const PageFile> page_files();

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_PAGE_FILES_H_
