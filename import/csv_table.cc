#include "import/csv_table.h"

namespace refgrove {

CsvRecords::CsvRecords(std::string_view text, char separator) : text_(text), separator_(separator) {
  if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
}

bool CsvRecords::at_record_end() const {
  return at_ == text_.size() || text_[at_] == '\n' || text_.substr(at_).starts_with("\r\n");
}

void CsvRecords::skip_record_end() {
  if (at_ == text_.size()) return;
  at_ += text_[at_] == '\r' ? 2 : 1;
  ++line_;
}

std::string CsvRecords::quoted_field() {
  const std::int64_t start_line = line_;
  std::string value;
  for (++at_;; ++at_) {
    if (at_ == text_.size()) {
      throw CsvSyntaxError("a quoted field from line " + std::to_string(start_line) + " has no closing quote");
    }
    const char c = text_[at_];
    if (c == '\n') ++line_;
    if (c != '"') {
      value += c;
    } else if (at_ + 1 < text_.size() && text_[at_ + 1] == '"') {
      value += '"';
      ++at_;
    } else {
      break;
    }
  }
  ++at_;  // the closing quote
  if (!at_record_end() && text_[at_] != separator_) throw CsvSyntaxError("text after the closing quote of a field");
  return value;
}

std::string CsvRecords::field() {
  if (at_ < text_.size() && text_[at_] == '"') return quoted_field();
  const std::size_t start = at_;
  while (!at_record_end() && text_[at_] != separator_) ++at_;
  return std::string(text_.substr(start, at_ - start));
}

bool CsvRecords::next(std::vector<std::string>* fields, std::int64_t* line) {
  while (at_ < text_.size() && at_record_end()) skip_record_end();  // blank lines
  if (at_ == text_.size()) return false;
  *line = line_;
  fields->clear();
  try {
    for (;;) {
      fields->push_back(field());
      if (at_record_end()) break;
      ++at_;  // the separator
    }
  } catch (const CsvSyntaxError&) {
    // The next record is taken to start on the next line.
    while (!at_record_end()) ++at_;
    skip_record_end();
    throw;
  }
  skip_record_end();
  return true;
}

}  // namespace refgrove
