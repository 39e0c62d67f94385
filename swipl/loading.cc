// refgrove_load/1 and refgrove_preproc/2: their messages are collected
// while they run and then handed to print_message/2 (as refgrove(Lines),
// informational), so that the verbose flag silences them and message_hook/3
// captures them. Neither ends the process: every failure becomes a Prolog
// exception.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "graph/graph_file.h"
#include "preproc/preprocess.h"
#include "preproc/staged_output.h"
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

}  // namespace

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

namespace {

// Preprocessing writes into a staging directory beside the output
// directory and then renames each data file into place: a data directory
// that this or another thread has loaded keeps its files (and their
// mappings) intact, and a run that fails leaves the output as it was. The
// lock file beside the output keeps out other processes, the refgrove tool
// included.

// Preprocessing runs one at a time in this process (each run has threads
// and buffers of its own); the queries go on meanwhile.
std::mutex preproc_mutex;

std::function<bool()> io_error(const std::string& path, const std::string& reason) {
  return [path, reason] { return raise_error("refgrove_io_error", {path, reason}); };
}

// The messages of a run in the staging directory, naming the output instead.
std::string as_written_to(std::string text, const std::string& staging, const std::string& out) {
  for (std::size_t at = text.find(staging); at != std::string::npos; at = text.find(staging, at + out.size())) {
    text.replace(at, staging.size(), out);
  }
  return text;
}

// A data directory prefix split at its last "/": the directory, as given
// ("" or ending in "/"), and the start of the file names ("" for a plain
// directory).
struct OutputPrefix {
  explicit OutputPrefix(const std::string& prefix)
      : dir(prefix.substr(0, prefix.rfind('/') + 1)), names(prefix.substr(dir.size())) {}
  std::string dir, names;

  // The data files as named in the staging directory and in the output.
  std::vector<std::string> data_files() const {
    std::vector<std::string> files;
    for (const char* name : kDataFiles) files.push_back(names + name);
    return files;
  }
};

// The output directory must be there: the library writes into a directory,
// it does not make one.
void check_output_directory(const fs::path& dir) {
  struct stat status;
  if (stat(dir.c_str(), &status) != 0) throw PreprocError(dir.string(), std::strerror(errno));
  if (!S_ISDIR(status.st_mode)) throw PreprocError(dir.string(), "is not a directory");
}

// Runs preprocessing in `staging` and moves its files into place, its
// messages written to `log`; on failure returns the exception to raise.
// Messages and errors name the output, not the staging directory.
std::function<bool()> preprocess_into(const std::string& in, const StagingDir& staging, const TargetPaths& target,
                                      const OutputPrefix& out, std::ostream& log) {
  std::ostringstream messages;
  const auto named_for_output = [&](const std::string& text) { return as_written_to(text, staging.prefix(), out.dir); };
  const auto relay_messages = [&] { log << named_for_output(messages.str()); };
  try {
    PreprocOptions options;
    options.out = &messages;
    options.err = &messages;
    options.checked = true;
    preprocess(in, staging.prefix() + out.names, options);
    relay_messages();
  } catch (const DumpParseError& e) {
    relay_messages();
    const int column = e.pos.column < 0 ? e.pos.column : e.pos.column - 1;  // printed columns are 0-based
    return [e, column] { return raise_dump_syntax_error(e.dump, e.pos.row, column, e.message); };
  } catch (const PreprocError& e) {
    relay_messages();
    return io_error(named_for_output(e.path), e.reason);
  }
  std::string error;
  if (move_into_place(staging.path(), target, out.data_files(), &error)) return nullptr;
  return io_error(target.target, named_for_output(error));
}

// Takes the output's lock, clears what killed runs left beside it and runs
// preprocessing in a fresh staging directory.
std::function<bool()> run_locked(const std::string& in, const OutputPrefix& out, std::ostream& log) {
  const fs::path dir = directory_of(out.dir + out.names);
  check_output_directory(dir);
  TargetPaths target;
  std::string error;
  if (!resolve_target(dir.string(), &target, &error)) return io_error(dir.string(), error);
  const auto waiting = [&] { log << "another run is writing " << target.target << "; waiting for it to finish\n"; };
  const std::unique_ptr<TargetLock> lock = TargetLock::acquire(target, waiting, &error);
  if (lock == nullptr) return io_error(target.target, error);
  for (const std::string& removed : remove_leftovers(target)) {
    log << "removed " << removed << ", left behind by a run that was interrupted\n";
  }
  const StagingDir staging(target.staging_dir(getpid()));
  if (!staging.make(&error)) return io_error(target.target, error);
  return preprocess_into(in, staging, target, out, log);
}

std::function<bool()> run_preprocessing(const std::string& in, const std::string& out, std::ostream& log) {
  try {
    const std::lock_guard lock(preproc_mutex);
    return run_locked(in, OutputPrefix(out), log);
  } catch (const PreprocError& e) {
    return io_error(e.path, e.reason);
  } catch (const fs::filesystem_error& e) {
    return io_error(e.path1().string(), e.code().message());
  }
}

}  // namespace

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

}  // namespace refgrove::swipl
