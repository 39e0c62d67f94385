// refgrove_load/1 and refgrove_preproc/2: their messages are collected
// while they run and then handed to print_message/2 (as refgrove(Lines),
// informational), so that the verbose flag silences them and message_hook/3
// captures them. Neither ends the process: every failure becomes a Prolog
// exception.
#include <filesystem>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "core/validate.h"
#include "preproc/manifest.h"
#include "preproc/preprocess.h"
#include "preproc/staged_preprocess.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

namespace fs = std::filesystem;

// Hands the lines of `text` to print_message(Kind, refgrove(Lines)), Kind
// `informational` or, with a topic, debug(Topic). Printing problems are not
// the caller's: they are dropped.
void emit_messages(const std::string& text, const char* debug_topic = nullptr) {
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
  const bool kind = debug_topic == nullptr ? PL_put_atom_chars(args, "informational")
                                           : PL_unify_term(args, PL_FUNCTOR_CHARS, "debug", 1, PL_CHARS, debug_topic);
  if (built && PL_unify_nil(tail) && kind && PL_unify_term(args + 1, PL_FUNCTOR_CHARS, "refgrove", 1, PL_TERM, lines)) {
    PL_call_predicate(nullptr, PL_Q_NODEBUG | PL_Q_CATCH_EXCEPTION, print_message, args);
  }
  if (!built) PL_clear_exception();  // out of stack: the messages are lost
  PL_discard_foreign_frame(frame);
}

// Raises existence_error(directory, D) or existence_error(file, F) unless
// the data directory `dir` (ending in "/") has all of its files.
bool check_data_directory(const std::string& dir) {
  std::error_code error;
  const std::string shown = dir.size() > 1 ? dir.substr(0, dir.size() - 1) : dir;  // without its "/"
  if (!fs::is_directory(dir.empty() ? "." : dir, error)) {
    return raise_existence_error("directory", shown, "refgrove_load", 1);
  }
  for (const std::string& name : data_file_names()) {
    if (!fs::is_regular_file(dir + name, error)) return raise_existence_error("file", dir + name, "refgrove_load", 1);
  }
  return true;
}

}  // namespace

foreign_t load_pred(term_t args, int, control_t) {
  std::string path;
  if (!get_path_input(args, &path)) return false;
  const std::string dir = dir_prefix(path);  // with or without its "/"
  if (!check_data_directory(dir)) return false;
  std::ostringstream log;
  if (library_slot().current()) log << "deleting loaded data...\n";
  DataSetPtr next = load_data_set(dir, log);
  library_slot().replace(std::move(next));
  emit_messages(log.str(), "refgrove");  // a load is quiet unless debug(refgrove) asks
  return true;
}

namespace {

// Preprocessing runs as `refgrove preprocess` does (staged_preprocess.h):
// a data directory that this or another thread has loaded keeps its files
// (and their mappings) intact, a run that fails leaves the output as it
// was, and the lock file beside the output keeps out other processes, the
// refgrove tool included. Runs go one at a time in this process (each has
// threads and buffers of its own); the queries go on meanwhile.
std::mutex preproc_mutex;

// The library's part in a staged run: its messages collected, the data
// made checked as `refgrove check` does.
class LibraryHooks : public StagedRunHooks {
 public:
  explicit LibraryHooks(std::ostream& log) : log_(log) {}
  void waiting(const TargetPaths& paths) override {
    log_ << "another run is writing " << paths.target << "; waiting for it to finish\n";
  }
  void removed_leftover(const std::string& path) override {
    log_ << "removed " << path << ", left behind by a run that was interrupted\n";
  }
  void run_files_made(const std::string& staging_dir, const std::string&) override { staging_ = staging_dir + "/"; }
  std::vector<std::string> check(const std::string& dir) override {
    std::vector<std::string> problems;
    for (const Finding& f : validate_data_dir(dir)) problems.push_back(f.text());
    return problems;
  }
  const std::string& staging() const { return staging_; }

 private:
  std::ostream& log_;
  std::string staging_;
};

std::function<bool()> io_error(const std::string& path, const std::string& reason) {
  return [path, reason] { return raise_error("refgrove_io_error", {path, reason}); };
}

// Runs preprocessing, its messages written to `log`; on failure returns
// the exception to raise.
std::function<bool()> run_preprocessing(const std::string& in, const std::string& out, std::ostream& log) {
  std::ostringstream messages;
  LibraryHooks hooks(log);
  StagedRequest request{in, out, {}, "refgrove_preproc/2", {}};
  request.options.out = request.options.err = &messages;
  const auto relay_messages = [&] { log << with_path_replaced(messages.str(), hooks.staging(), dir_prefix(out)); };
  try {
    const std::lock_guard lock(preproc_mutex);
    staged_preprocess(request, hooks);
    relay_messages();
    return nullptr;
  } catch (const DumpParseError& e) {
    relay_messages();
    const int column = e.pos.column < 0 ? e.pos.column : e.pos.column - 1;  // printed columns are 0-based
    return [e, column] { return raise_dump_syntax_error(e.dump, e.pos.row, column, e.message); };
  } catch (const StagedRunError& e) {
    relay_messages();
    std::string reason = e.reason;
    for (const std::string& problem : e.problems) reason += "; " + problem;
    return io_error(e.path, reason);
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
