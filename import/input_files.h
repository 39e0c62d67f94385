// The input files of an import: the files and directories given, the
// directories walked (their files in name order), and each file's contents,
// read compressed when its name ends in ".gz".
#ifndef REFGROVE_IMPORT_INPUT_FILES_H_
#define REFGROVE_IMPORT_INPUT_FILES_H_

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace refgrove {

// An input that cannot be used: the file, and where known the line (from 1)
// and the field. what(): "FILE:LINE: FIELD: MESSAGE" with the parts known.
class ImportError : public std::runtime_error {
 public:
  ImportError(std::string file, std::int64_t line, std::string field, std::string message);
  std::string file;
  std::int64_t line;  // 0: the file as a whole
  std::string field;  // empty: the record as a whole
  std::string message;
};

// The files of `inputs` in order: a file as given, a directory's files
// below it, walked in name order, keeping those for which `usable(name)`
// holds. Throws ImportError for an input that does not exist and for a
// directory with no usable file.
std::vector<std::string> list_input_files(const std::vector<std::string>& inputs,
                                          const std::function<bool(const std::string&)>& usable);

// The contents of `path`, decompressed when it ends in ".gz", followed by
// `padding` zero bytes that are not part of the returned size. Throws
// ImportError when the file cannot be read or its compressed data is
// damaged or cut short.
struct FileContents {
  std::string bytes;  // size() includes the padding
  std::size_t size = 0;
  std::int64_t first_line = 1;  // the number in the file of the first line of `bytes`
};
FileContents read_input_file(const std::string& path, std::size_t padding);

// Reads `path` as read_input_file() does, but in pieces of whole lines (the
// last one may lack its line end), each handed to `each` with its first
// line's number and followed by at least `padding` bytes of room: a file
// of lines is read in the memory of a few pieces of about `piece_bytes`
// (more for a longer line), whatever its size.
inline constexpr std::size_t kLinePieceBytes = std::size_t{1} << 23;
void read_input_lines(const std::string& path, std::size_t padding,
                      const std::function<void(const FileContents&)>& each, std::size_t piece_bytes = kLinePieceBytes);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_INPUT_FILES_H_
