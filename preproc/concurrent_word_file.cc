#include "preproc/concurrent_word_file.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <limits>
#include <string_view>
#include <utility>

#include "words/word_files.h"

namespace refgrove {

namespace {

// A string stream over a buffer of `bytes` allocated up front, or of none
// where that much cannot be had. Growing a buffer copies what it holds and
// for a while takes up both sizes; reserving room for more than will be
// written costs nothing, as pages never written to are never allocated.
std::ostringstream stream_with_room_for(std::uintmax_t bytes) {
  std::string buffer;
  try {
    buffer.reserve(static_cast<std::size_t>(std::min<std::uintmax_t>(bytes, buffer.max_size())));
  } catch (const std::exception&) {
  }
  return std::ostringstream(std::move(buffer), std::ios::out | std::ios::binary);
}

// Room for the word ids of the dump at `path`: as many bytes as the dump
// has. A word takes 3 bytes there and, with its blank, about 6 in the dump.
std::uintmax_t held_bytes_for(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace

ConcurrentWordFile::ConcurrentWordFile(WordPreproc* preproc, std::string path)
    : preproc_(preproc), path_(std::move(path)), data_out_(stream_with_room_for(held_bytes_for(path_))), read_([this] {
        counts_ = preproc_->preprocFile(&words_, data_out_, idx_out_, path_.c_str(), messages_.out(), messages_.err());
      }) {}

bool ConcurrentWordFile::number(StringTable* table) {
  read_error_ = read_.wait();
  data_ = std::move(data_out_).str();
  // The held ids are 3 bytes and the held offsets 32 bits. Beyond that
  // many distinct words or bytes they cannot be told apart.
  if (words_.size() > (1 << 24) || data_.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    return false;
  }
  // The caller's id of each of the dump's own ids.
  renumber_ = std::make_unique<BackgroundJob>([this, ids = table->String2IDs(words_.by_id)] { renumber(ids); });
  return true;
}

void ConcurrentWordFile::renumber(const std::vector<int>& ids) {
  for (std::size_t i = 0; i + kWordIdBytes <= data_.size(); i += kWordIdBytes) {
    const WordId own = read_word_id(reinterpret_cast<const unsigned char*>(&data_[i]));
    store_word_id(&data_[i], WordId::from_id(static_cast<std::uint32_t>(ids[own.id()])));
  }
}

void ConcurrentWordFile::write(std::ostream& data_out, std::ostream& idx_out) {
  if (const std::exception_ptr error = renumber_->wait()) std::rethrow_exception(error);
  messages_.replay(*preproc_->options().out, *preproc_->options().err);
  // Each document as preprocFile writes it: its header, with the put
  // position of data_out, then its ids, which run up to the next header's.
  const std::string_view idx = idx_out_.view();
  const auto header_at = [&idx](std::size_t at) {
    return read_document_word_info(reinterpret_cast<const unsigned char*>(idx.data() + at));
  };
  std::int64_t position = data_out.tellp();
  for (std::size_t k = 0; k + kDocumentWordInfoBytes <= idx.size(); k += kDocumentWordInfoBytes) {
    const DocumentWordInfo doc = header_at(k);
    const std::size_t begin = static_cast<std::size_t>(doc.offset);
    const std::size_t end = k + 2 * kDocumentWordInfoBytes <= idx.size()
                                ? static_cast<std::size_t>(header_at(k + kDocumentWordInfoBytes).offset)
                                : data_.size();
    const std::int32_t offset = data_out.fail() ? -1 : static_cast<std::int32_t>(position);
    write_document_word_info(idx_out, DocumentWordInfo{doc.did, offset});
    data_out.write(data_.data() + begin, static_cast<std::streamsize>(end - begin));
    position += static_cast<std::int64_t>(end - begin);
    if (preproc_->options().checked && position > preproc_->options().limits.word_data_bytes) {
      preproc_->check_limits(
          RunSize{position, 0, idx_out.tellp() / static_cast<std::streamoff>(kDocumentWordInfoBytes)});
    }
  }
  if (read_error_) std::rethrow_exception(read_error_);
}

void ConcurrentWordFile::read_again(StringTable* table, std::ostream& data_out, std::ostream& idx_out) {
  counts_ = preproc_->preprocFile(table, data_out, idx_out, path_.c_str(), *preproc_->options().out,
                                  *preproc_->options().err);
}

}  // namespace refgrove
