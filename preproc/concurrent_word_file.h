// ConcurrentWordFile: a word dump read in a thread of its own while the dumps
// before it are read, as ConcurrentGraphParse does for the graph dump.
//
// Its words get the ids of a table of its own, and its word files and its
// messages are held in memory. Once the dumps before it are in the caller's
// table, number() gives its words the ids that table gives them, in the
// order in which the dump first holds them, and rewrites the held ids in a
// job of its own. write() then writes the documents and messages where
// preprocFile would have written them: the files, ids and messages are
// exactly those of preprocFile run on the caller's table.
#ifndef REFGROVE_PREPROC_CONCURRENT_WORD_FILE_H_
#define REFGROVE_PREPROC_CONCURRENT_WORD_FILE_H_

#include <exception>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "preproc/background_job.h"
#include "preproc/message_log.h"
#include "preproc/word_preproc.h"
#include "words/string_table.h"
#include "words/word_files.h"

namespace refgrove {

class ConcurrentWordFile {
 public:
  // Starts reading `path` with preproc->preprocFile.
  ConcurrentWordFile(WordPreproc* preproc, std::string path);

  // Waits for the dump, gives its words their ids in `table` and starts
  // rewriting the held ids. Returns false, leaving `table` as it was, when
  // the held data cannot tell the dump's words apart (more than 2^24
  // distinct words, or 2^31 bytes of ids); read_again() then takes the
  // place of write().
  bool number(StringTable* table);

  // After number() returned true: whether the dump parsed to its end.
  bool parsed() const { return !read_error_; }

  // After number() returned true: writes the dump's messages, then its
  // documents, then throws what reading it threw.
  void write(std::ostream& data_out, std::ostream& idx_out);

  // Reads the dump once more, with preprocFile on `table`.
  void read_again(StringTable* table, std::ostream& data_out, std::ostream& idx_out);

  // After write() or read_again(): what the dump held beside its documents.
  const WordPreproc::DumpCounts& counts() const { return counts_; }

 private:
  // Replaces each held id by ids[id].
  void renumber(const std::vector<int>& ids);

  WordPreproc* preproc_;
  std::string path_;
  StringTable words_;
  std::ostringstream data_out_, idx_out_;
  MessageLog messages_;
  WordPreproc::DumpCounts counts_;
  std::exception_ptr read_error_;
  std::string data_;                         // the held ids, once numbered
  std::unique_ptr<BackgroundJob> renumber_;  // rewrites data_
  BackgroundJob read_;                       // last: it runs while the others live
};

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_CONCURRENT_WORD_FILE_H_
