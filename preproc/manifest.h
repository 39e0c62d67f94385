// The manifest of a data directory made by a staged run (the tool's
// `refgrove preprocess`, the SWI-Prolog library's refgrove_preproc/2): the
// size and an XXH3 64-bit checksum of each of its four data files, written
// beside them as "refgrove-manifest.json" once they are all complete. The
// module and the loaders never read it; `refgrove check` compares it with the files
// when it is there, which tells files of different runs apart (a run that
// replaced some of the files and not the others, or a file copied in from
// elsewhere) even when they happen to fit together.
//
//   {"files": {"graph_data": {"size": 1234, "xxh3_64": "af63dc4c8601ec8c"}, ...},
//    "made_by": "refgrove preprocess"}   (or "refgrove_preproc/2", ...)
//
// Manifests written by version 1.0.0 hold an FNV-1a 64 checksum under
// "fnv1a64" instead; they are compared with that. XXH3 reads a file at the
// speed of memory, where FNV-1a, a multiplication per byte, took 0.6 s for
// the 500 MB of a 1,000,000-document directory.
#ifndef REFGROVE_PREPROC_MANIFEST_H_
#define REFGROVE_PREPROC_MANIFEST_H_

#include <cstdint>
#include <string>
#include <vector>

namespace refgrove {

inline constexpr char kManifestFile[] = "refgrove-manifest.json";

// The names of the four data files, in the order the manifest lists them.
const std::vector<std::string>& data_file_names();

// The data files that a data directory may hold beside the four, listed by
// the manifest when they are there: the keys of the works cited from outside
// the set, which an import writes (import/outside_keys.h).
inline constexpr char kOutsideKeysFile[] = "outside-keys";
const std::vector<std::string>& optional_data_file_names();

enum class ChecksumKind { xxh3_64, fnv1a64 };

// FNV-1a 64 of `size` bytes, continuing from `hash` (start with the offset
// basis kFnvOffsetBasis).
inline constexpr std::uint64_t kFnvOffsetBasis = 0xcbf29ce484222325u;
std::uint64_t fnv1a64(const void* bytes, std::size_t size, std::uint64_t hash = kFnvOffsetBasis);

struct FileDigest {
  std::uint64_t size = 0;
  std::uint64_t checksum = 0;  // of the whole file
};

// The digest of the file `path`; false with the system's error text in
// `error` when it cannot be read.
bool digest_file(const std::string& path, ChecksumKind kind, FileDigest* digest, std::string* error);

// Writes the manifest of the data directory `dir` (a prefix, ending in "/")
// into the file `path`, flushed to disk, naming `made_by` as its writer.
// False with "<file>: <system error>" in `error` when a data file cannot be
// read or the manifest not written.
bool write_manifest(const std::string& dir, const std::string& path, const std::string& made_by, std::string* error);

// A data file that does not match the manifest, or the manifest itself
// (`file` is then kManifestFile) when it cannot be compared.
struct ManifestMismatch {
  std::string file;
  std::string message;  // one sentence
};

// Compares the manifest of `dir` with its data files: one mismatch per file
// whose size or checksum differs, or one for a manifest that cannot be read.
// None when `dir` has no manifest. A data file that is missing is left to
// the consistency check (core/validate.h), which reports it.
std::vector<ManifestMismatch> manifest_mismatches(const std::string& dir);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_MANIFEST_H_
