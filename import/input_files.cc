#include "import/input_files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <future>
#include <memory>

namespace refgrove {
namespace {

std::string error_text(const std::string& file, std::int64_t line, const std::string& field,
                       const std::string& message) {
  std::string text = file;
  if (line > 0) text += ":" + std::to_string(line);
  text += ": ";
  if (!field.empty()) text += field + ": ";
  return text + message;
}

bool ends_with(const std::string& s, const std::string& end) {
  return s.size() >= end.size() && s.compare(s.size() - end.size(), end.size(), end) == 0;
}

void walk(const std::string& dir, const std::function<bool(const std::string&)>& usable,
          std::vector<std::string>* files) {
  std::unique_ptr<DIR, int (*)(DIR*)> d(opendir(dir.c_str()), closedir);
  if (!d) throw ImportError(dir, 0, "", std::strerror(errno));
  std::vector<std::string> names;
  while (const dirent* e = readdir(d.get())) {
    if (e->d_name[0] != '.') names.emplace_back(e->d_name);
  }
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    const std::string path = dir + "/" + name;
    struct stat st;
    if (stat(path.c_str(), &st) != 0) continue;
    if (S_ISDIR(st.st_mode)) {
      walk(path, usable, files);
    } else if (S_ISREG(st.st_mode) && usable(name)) {
      files->push_back(path);
    }
  }
}

void read_plain(const std::string& path, FileContents* contents) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ImportError(path, 0, "", std::strerror(errno));
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  in.seekg(0);
  contents->bytes.resize(static_cast<std::size_t>(size));
  if (!in.read(contents->bytes.data(), size)) throw ImportError(path, 0, "", "cannot be read");
  contents->size = contents->bytes.size();
}

// The size that a gzip file's trailer gives (its last member's size modulo
// 2^32: exact for the usual file of one member under 4 GiB), a first guess
// of the room its contents need.
std::size_t gzip_size_hint(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  unsigned char trailer[4] = {};
  if (!in.seekg(-4, std::ios::end) || !in.read(reinterpret_cast<char*>(trailer), 4)) return 0;
  return trailer[0] | trailer[1] << 8 | trailer[2] << 16 | static_cast<std::size_t>(trailer[3]) << 24;
}

// Sets the size of `bytes` to `size`, keeping its first bytes and leaving
// the others unwritten: room that a read fills at once.
void grow(std::string& bytes, std::size_t size) {
  bytes.resize_and_overwrite(size, [](char*, std::size_t n) { return n; });
}

// The bytes of an input file in order, decompressed when its name ends in
// ".gz" (zlib's gz* functions: concatenated members, as parallel
// compressors make them, are read one after the other).
class InputBytes {
 public:
  explicit InputBytes(const std::string& path) : path_(path) {
    if (ends_with(path, ".gz")) {
      gz_.reset(gzopen(path.c_str(), "rb"));
      if (gz_) gzbuffer(gz_.get(), 1 << 18);
    } else {
      file_.reset(std::fopen(path.c_str(), "rb"));
    }
    if (!gz_ && !file_) throw ImportError(path, 0, "", std::strerror(errno));
  }

  // Reads up to `size` bytes into `to`; 0 at the end. Throws ImportError
  // when the file cannot be read or its compressed data is damaged or cut
  // short.
  std::size_t read(char* to, std::size_t size) {
    if (file_) {
      const std::size_t n = std::fread(to, 1, size, file_.get());
      if (n == 0 && std::ferror(file_.get())) throw ImportError(path_, 0, "", "cannot be read");
      return n;
    }
    const int n = gzread(gz_.get(), to, static_cast<unsigned>(std::min<std::size_t>(size, 1u << 30)));
    int code = 0;
    const char* message = gzerror(gz_.get(), &code);
    if (n < 0 || (n == 0 && code != Z_OK)) {
      throw ImportError(path_, 0, "", std::string("damaged compressed data (") + message + ")");
    }
    return static_cast<std::size_t>(n);
  }

 private:
  std::string path_;
  std::unique_ptr<gzFile_s, int (*)(gzFile)> gz_{nullptr, gzclose};
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_{nullptr, std::fclose};
};

void read_gzip(const std::string& path, std::size_t padding, FileContents* contents) {
  InputBytes in(path);
  std::string& bytes = contents->bytes;
  // One more byte than the hint, so that the end is found without growing,
  // and the padding, so that adding it copies nothing.
  grow(bytes, std::max<std::size_t>(gzip_size_hint(path) + 1 + padding, 1 << 22));
  std::size_t size = 0;
  for (;;) {
    if (size == bytes.size()) grow(bytes, bytes.size() + bytes.size() / 2);
    const std::size_t n = in.read(bytes.data() + size, bytes.size() - size);
    if (n == 0) break;
    size += n;
  }
  bytes.resize(size);
  contents->size = size;
}

// A piece of a file of lines: the whole lines of what was read
// (contents.size bytes), then the start of the next line, then room.
struct LinePiece {
  FileContents contents;
  std::size_t filled = 0;  // bytes read into contents.bytes

  // Reads on after the bytes already there until the piece holds a line
  // end or the file ends; returns whether it ended (all it holds is then
  // the last piece). The room, and `padding` bytes after it, grows for a
  // line longer than it.
  bool fill(InputBytes& in, std::size_t piece_bytes, std::size_t padding) {
    if (contents.bytes.size() < piece_bytes + padding) grow(contents.bytes, piece_bytes + padding);
    for (;;) {
      if (filled + padding >= contents.bytes.size()) grow(contents.bytes, 2 * filled + padding);
      const std::size_t n = in.read(contents.bytes.data() + filled, contents.bytes.size() - padding - filled);
      filled += n;
      if (n == 0) {
        contents.size = filled;
        return true;
      }
      if (const void* last_end = memrchr(contents.bytes.data(), '\n', filled)) {
        contents.size = static_cast<std::size_t>(static_cast<const char*>(last_end) - contents.bytes.data()) + 1;
        return false;
      }
    }
  }

  // Starts `next` with what follows the whole lines of this piece.
  void carry_rest(LinePiece& next) const {
    const char* data = contents.bytes.data();
    next.filled = filled - contents.size;
    if (next.contents.bytes.size() < next.filled) grow(next.contents.bytes, next.filled);
    std::memcpy(next.contents.bytes.data(), data + contents.size, next.filled);
    next.contents.size = 0;
    next.contents.first_line = contents.first_line + std::count(data, data + contents.size, '\n');
  }
};

}  // namespace

ImportError::ImportError(std::string file, std::int64_t line, std::string field, std::string message)
    : std::runtime_error(error_text(file, line, field, message)),
      file(std::move(file)),
      line(line),
      field(std::move(field)),
      message(std::move(message)) {}

std::vector<std::string> list_input_files(const std::vector<std::string>& inputs,
                                          const std::function<bool(const std::string&)>& usable) {
  std::vector<std::string> files;
  for (const std::string& input : inputs) {
    struct stat st;
    if (stat(input.c_str(), &st) != 0) throw ImportError(input, 0, "", std::strerror(errno));
    if (!S_ISDIR(st.st_mode)) {
      files.push_back(input);
      continue;
    }
    const std::size_t before = files.size();
    walk(input, usable, &files);
    if (files.size() == before) throw ImportError(input, 0, "", "the directory holds no file to import");
  }
  return files;
}

FileContents read_input_file(const std::string& path, std::size_t padding) {
  FileContents contents;
  if (ends_with(path, ".gz")) {
    read_gzip(path, padding, &contents);
  } else {
    read_plain(path, &contents);
  }
  contents.bytes.append(padding, '\0');
  return contents;
}

}  // namespace refgrove

namespace refgrove {

void read_input_lines(const std::string& path, std::size_t padding,
                      const std::function<void(const FileContents&)>& each, std::size_t piece_bytes) {
  // Two pieces: the next one is read (and decompressed) in a thread of its
  // own while the caller works on the other.
  InputBytes in(path);
  LinePiece pieces[2];
  LinePiece* current = &pieces[0];
  LinePiece* next = &pieces[1];
  bool end = current->fill(in, piece_bytes, padding);
  for (;;) {
    current->carry_rest(*next);
    std::future<bool> reading;
    if (!end)
      reading = std::async(std::launch::async,
                           [&in, next, piece_bytes, padding] { return next->fill(in, piece_bytes, padding); });
    if (current->contents.size > 0) each(current->contents);
    if (end) return;
    end = reading.get();
    std::swap(current, next);
  }
}

}  // namespace refgrove
