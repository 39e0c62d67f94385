// MessageLog: messages of a pass that runs in a thread of its own, held
// back and written later as if the pass had written them itself.
//
// The pass writes to out() and err() instead of the run's two streams.
// replay() then writes everything to those streams in the order in which it
// was written. The order across the two streams matters where both go to
// one file or terminal: std::cerr flushes std::cout before each write, so a
// program's messages come out there in program order.
#ifndef REFGROVE_PREPROC_MESSAGE_LOG_H_
#define REFGROVE_PREPROC_MESSAGE_LOG_H_

#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace refgrove {

class MessageLog {
 public:
  MessageLog() : out_buf_(this, kOut), err_buf_(this, kErr), out_(&out_buf_), err_(&err_buf_) {}
  MessageLog(const MessageLog&) = delete;
  MessageLog& operator=(const MessageLog&) = delete;

  std::ostream& out() { return out_; }
  std::ostream& err() { return err_; }

  // Writes the messages to `out` and `err`, in order.
  void replay(std::ostream& out, std::ostream& err) const {
    for (const auto& [stream, text] : segments_) (stream == kOut ? out : err) << text;
  }

 private:
  static constexpr int kOut = 0, kErr = 1;

  // Appends what a stream writes to the log, as a segment of its own when
  // the other stream wrote last.
  class Recorder : public std::streambuf {
   public:
    Recorder(MessageLog* log, int stream) : log_(log), stream_(stream) {}

   protected:
    int_type overflow(int_type c) override {
      if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
      const char ch = traits_type::to_char_type(c);
      xsputn(&ch, 1);
      return c;
    }
    std::streamsize xsputn(const char* s, std::streamsize n) override {
      std::vector<std::pair<int, std::string>>& segments = log_->segments_;
      if (segments.empty() || segments.back().first != stream_) segments.emplace_back(stream_, std::string());
      segments.back().second.append(s, static_cast<std::size_t>(n));
      return n;
    }

   private:
    MessageLog* log_;
    int stream_;
  };

  std::vector<std::pair<int, std::string>> segments_;
  Recorder out_buf_, err_buf_;
  std::ostream out_, err_;
};

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_MESSAGE_LOG_H_
