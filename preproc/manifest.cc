#include "preproc/manifest.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "graph/graph_file.h"
#include "preproc/file_sync.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

using nlohmann::json;

// The manifest's key of each kind of checksum.
const char* checksum_key(ChecksumKind kind) { return kind == ChecksumKind::xxh3_64 ? "xxh3_64" : "fnv1a64"; }

std::string hex64(std::uint64_t v) {
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, v);
  return text;
}

// The manifest's entry for one file: its size and checksum, and the kind
// of the checksum (the faster one where an entry holds both); false when
// the entry cannot be used.
bool parse_entry(const json& entry, FileDigest* digest, ChecksumKind* kind) {
  if (!entry.is_object() || !entry.contains("size") || !entry["size"].is_number_unsigned()) return false;
  for (const ChecksumKind k : {ChecksumKind::xxh3_64, ChecksumKind::fnv1a64}) {
    const char* key = checksum_key(k);
    if (!entry.contains(key) || !entry[key].is_string()) continue;
    const std::string text = entry[key].get<std::string>();
    if (text.size() != 16 || text.find_first_not_of("0123456789abcdef") != std::string::npos) return false;
    digest->size = entry["size"].get<std::uint64_t>();
    digest->checksum = std::stoull(text, nullptr, 16);
    *kind = k;
    return true;
  }
  return false;
}

// A checksum computed a buffer at a time.
class RunningChecksum {
 public:
  explicit RunningChecksum(ChecksumKind kind) : kind_(kind) { XXH3_64bits_reset(&xxh3_); }
  void add(const void* bytes, std::size_t size) {
    if (kind_ == ChecksumKind::xxh3_64) {
      XXH3_64bits_update(&xxh3_, bytes, size);
    } else {
      fnv_ = fnv1a64(bytes, size, fnv_);
    }
  }
  std::uint64_t value() const { return kind_ == ChecksumKind::xxh3_64 ? XXH3_64bits_digest(&xxh3_) : fnv_; }

 private:
  ChecksumKind kind_;
  XXH3_state_t xxh3_;
  std::uint64_t fnv_ = kFnvOffsetBasis;
};

ManifestMismatch unusable_manifest(const std::string& message) { return ManifestMismatch{kManifestFile, message}; }

}  // namespace

const std::vector<std::string>& data_file_names() {
  static const std::vector<std::string> names = {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile};
  return names;
}

std::uint64_t fnv1a64(const void* bytes, std::size_t size, std::uint64_t hash) {
  const unsigned char* p = static_cast<const unsigned char*>(bytes);
  for (std::size_t i = 0; i < size; ++i) hash = (hash ^ p[i]) * 0x100000001b3u;
  return hash;
}

bool digest_file(const std::string& path, ChecksumKind kind, FileDigest* digest, std::string* error) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    *error = system_error_text(path, errno);
    return false;
  }
  const std::unique_ptr<char[]> buffer(new char[1 << 20]);
  // The XXH3 state wants 64-byte alignment, which `new` gives.
  const auto checksum = std::make_unique<RunningChecksum>(kind);
  std::uint64_t size = 0;
  for (;;) {
    const ssize_t n = read(fd, buffer.get(), 1 << 20);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      const int e = errno;
      close(fd);
      if (n < 0) *error = system_error_text(path, e);
      if (n == 0) *digest = FileDigest{size, checksum->value()};
      return n == 0;
    }
    size += static_cast<std::uint64_t>(n);
    checksum->add(buffer.get(), static_cast<std::size_t>(n));
  }
}

const std::vector<std::string>& optional_data_file_names() {
  static const std::vector<std::string> names = {kOutsideKeysFile};
  return names;
}

bool write_manifest(const std::string& dir, const std::string& path, const std::string& made_by, std::string* error) {
  json files = json::object();
  std::vector<std::string> names = data_file_names();
  for (const std::string& name : optional_data_file_names()) {
    if (access((dir + name).c_str(), F_OK) == 0) names.push_back(name);
  }
  for (const std::string& name : names) {
    FileDigest d;
    if (!digest_file(dir + name, ChecksumKind::xxh3_64, &d, error)) return false;
    files[name] = {{"size", d.size}, {checksum_key(ChecksumKind::xxh3_64), hex64(d.checksum)}};
  }
  const json manifest = {{"made_by", made_by}, {"files", files}};
  return write_synced(path, manifest.dump(2) + "\n", error);
}

std::vector<ManifestMismatch> manifest_mismatches(const std::string& dir) {
  std::ifstream in(dir + kManifestFile, std::ios::in | std::ios::binary);
  if (!in.is_open()) return {};
  const json manifest = json::parse(in, nullptr, false);
  if (manifest.is_discarded() || !manifest.is_object() || !manifest.contains("files") ||
      !manifest["files"].is_object()) {
    return {unusable_manifest("the manifest is not a JSON object with a \"files\" object: it cannot be compared.")};
  }
  std::vector<ManifestMismatch> mismatches;
  const json& files = manifest["files"];
  std::vector<std::string> names = data_file_names();
  for (const std::string& name : optional_data_file_names()) {
    if (files.contains(name)) names.push_back(name);
  }
  for (const std::string& name : names) {
    FileDigest listed, actual;
    ChecksumKind kind = ChecksumKind::xxh3_64;
    std::string error;
    if (!files.contains(name) || !parse_entry(files[name], &listed, &kind)) {
      mismatches.push_back(unusable_manifest("no valid size and checksum for " + name + ": it cannot be compared."));
    } else if (!digest_file(dir + name, kind, &actual, &error)) {
      // A missing data file is the consistency check's to report; an
      // optional one only the manifest knows about.
      if (!std::count(data_file_names().begin(), data_file_names().end(), name)) {
        mismatches.push_back(ManifestMismatch{
            name, "the file that " + std::string(kManifestFile) + " lists cannot be read: " + error + "."});
      }
    } else if ((actual.size != listed.size || actual.checksum != listed.checksum)) {
      mismatches.push_back(
          ManifestMismatch{name, "the file is not the one " + std::string(kManifestFile) + " lists (size " +
                                     std::to_string(actual.size) + ", listed " + std::to_string(listed.size) +
                                     (actual.checksum == listed.checksum ? "" : "; the checksum differs") +
                                     "): the files come from different runs, or this one was changed since."});
    }
  }
  return mismatches;
}

}  // namespace refgrove
