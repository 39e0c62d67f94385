// refgrove_load/1 and refgrove_preproc/2: their messages are collected
// while they run and then handed to print_message/2 (as refgrove(Lines),
// informational), so that the verbose flag silences them and message_hook/3
// captures them. Neither ends the process: every failure becomes a Prolog
// exception.
#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>

#include "graph/graph_file.h"
#include "preproc/preprocess.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"
#include "words/word_files.h"

namespace refgrove::swipl {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDataFiles[] = {kGraphFile, kWordTableFile, kWordIdxFile, kWordDataFile};

// Hands the lines of `text` to print_message(informational, refgrove(Lines)).
// Printing problems are not the caller's: they are dropped.
void emit_messages(const std::string& text) {
  if (text.empty()) return;
  static predicate_t print_message = PL_predicate("print_message", 2, "system");
  const fid_t frame = PL_open_foreign_frame();
  const term_t args = PL_new_term_refs(2);
  const term_t lines = PL_new_term_ref();
  const term_t tail = PL_copy_term_ref(lines);
  const term_t head = PL_new_term_ref();
  std::istringstream in(text);
  bool built = true;
  for (std::string line; built && std::getline(in, line);) {
    built = PL_unify_list(tail, head, tail) && unify_text(head, line, PL_STRING);
  }
  if (built && PL_unify_nil(tail) && PL_put_atom_chars(args, "informational") &&
      PL_unify_term(args + 1, PL_FUNCTOR_CHARS, "refgrove", 1, PL_TERM, lines)) {
    PL_call_predicate(nullptr, PL_Q_NODEBUG | PL_Q_CATCH_EXCEPTION, print_message, args);
  }
  if (!built) PL_clear_exception();  // out of stack: the messages are lost
  PL_discard_foreign_frame(frame);
}

// The directory that holds the files of data directory prefix `prefix`.
fs::path directory_of(const std::string& prefix) {
  const fs::path parent = fs::path(prefix + kGraphFile).parent_path();
  return parent.empty() ? fs::path(".") : parent;
}

// Raises existence_error(directory, D) or existence_error(file, F) unless
// the data directory `prefix` has all of its files.
bool check_data_directory(const std::string& prefix) {
  std::error_code error;
  const fs::path dir = directory_of(prefix);
  if (!fs::is_directory(dir, error)) return raise_existence_error("directory", dir.string());
  for (const char* name : kDataFiles) {
    if (!fs::is_regular_file(prefix + name, error)) return raise_existence_error("file", prefix + name);
  }
  return true;
}

foreign_t load_pred(term_t args, int, control_t) {
  std::string prefix;
  if (!get_path_input(args, &prefix) || !check_data_directory(prefix)) return false;
  std::ostringstream log;
  if (library_slot().current()) log << "deleting loaded data...\n";
  DataSetPtr next = load_data_set(prefix, log);
  library_slot().replace(std::move(next));
  emit_messages(log.str());
  return true;
}

// Preprocessing writes into a fresh directory beside the output and then
// renames each file into place: a data directory that this or another
// thread has loaded keeps its files (and their mappings) intact, and a run
// that fails leaves the output as it was.
class StagingDirectory {
 public:
  explicit StagingDirectory(const fs::path& beside) {
    std::string pattern = (beside / ".refgrove-preproc-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw PreprocError(beside.string(), std::error_code(errno, std::generic_category()).message());
    }
    path_ = pattern;
  }
  StagingDirectory(const StagingDirectory&) = delete;
  StagingDirectory& operator=(const StagingDirectory&) = delete;
  ~StagingDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }

  std::string prefix() const { return path_.string() + "/"; }

  // Moves every file written into data directory prefix `out`.
  void publish(const std::string& out) const {
    for (const fs::directory_entry& entry : fs::directory_iterator(path_)) {
      const std::string target = out + entry.path().filename().string();
      std::error_code error;
      fs::rename(entry.path(), target, error);
      if (error) throw PreprocError(target, error.message());
    }
  }

 private:
  fs::path path_;
};

// The reason of a PreprocError, without the path that what() starts with.
std::string reason_of(const PreprocError& e) {
  const std::string text = e.what();
  const std::string lead = e.path + ": ";
  return text.starts_with(lead) ? text.substr(lead.size()) : text;
}

// Preprocessing runs one at a time; the queries go on meanwhile.
std::mutex preproc_mutex;

// Runs preprocessing; on failure returns the exception to raise.
// The messages of a run in the staging directory, naming the output instead.
std::string as_written_to(std::string text, const std::string& staging, const std::string& out) {
  for (std::size_t at = text.find(staging); at != std::string::npos; at = text.find(staging, at + out.size())) {
    text.replace(at, staging.size(), out);
  }
  return text;
}

// Runs preprocessing in `staging`, its messages written to `log`; on
// failure returns the exception to raise. Messages and errors name the
// output, not the staging directory.
std::function<bool()> preprocess_into(const std::string& in, const StagingDirectory& staging, const std::string& out,
                                      std::ostream& log) {
  std::ostringstream messages;
  const auto relay_messages = [&] { log << as_written_to(messages.str(), staging.prefix(), out); };
  try {
    PreprocOptions options;
    options.out = &messages;
    options.err = &messages;
    options.checked = true;
    preprocess(in, staging.prefix(), options);
    relay_messages();
    staging.publish(out);
    return nullptr;
  } catch (const DumpParseError& e) {
    relay_messages();
    const int column = e.pos.column < 0 ? e.pos.column : e.pos.column - 1;  // printed columns are 0-based
    return [e, column] { return raise_dump_syntax_error(e.dump, e.pos.row, column, e.message); };
  } catch (const PreprocError& e) {
    relay_messages();
    return [path = as_written_to(e.path, staging.prefix(), out), reason = reason_of(e)] {
      return raise_error("refgrove_io_error", {path, reason});
    };
  }
}

std::function<bool()> run_preprocessing(const std::string& in, const std::string& out, std::ostream& log) {
  try {
    const std::lock_guard lock(preproc_mutex);
    const StagingDirectory staging(directory_of(out));
    return preprocess_into(in, staging, out, log);
  } catch (const PreprocError& e) {
    return [path = e.path, reason = reason_of(e)] { return raise_error("refgrove_io_error", {path, reason}); };
  } catch (const fs::filesystem_error& e) {
    return [path = e.path1().string(), reason = e.code().message()] {
      return raise_error("refgrove_io_error", {path, reason});
    };
  }
}

// The messages come first, then the exception, if any: print_message/2
// must not run with an exception pending.
foreign_t preproc_pred(term_t args, int, control_t) {
  std::string in, out;
  if (!get_path_input(args, &in) || !get_path_input(args + 1, &out)) return false;
  std::ostringstream log;
  const std::function<bool()> raise = run_preprocessing(in, out, log);
  emit_messages(log.str());
  return raise ? raise() : true;
}

constexpr ForeignPredicate kPredicates[] = {
    {"refgrove_load", 1, guarded<load_pred>, false},
    {"refgrove_preproc", 2, guarded<preproc_pred>, false},
};

}  // namespace

std::span<const ForeignPredicate> loading_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
