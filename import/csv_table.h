// The records of a table in CSV (RFC 4180) or tab-separated text.
//
// Fields are split at the separator; a field that starts with a double
// quote runs to the next lone double quote, holding separators, line ends
// and doubled quotes (each one quote) on the way, and must be followed by
// the separator or the end of the record. Records end at "\n" or "\r\n";
// blank lines are skipped. A UTF-8 byte order mark before the first record
// (spreadsheets write one) is not part of it. Anything else is taken as it
// is: a quote inside an unquoted field is an ordinary character.
#ifndef REFGROVE_IMPORT_CSV_TABLE_H_
#define REFGROVE_IMPORT_CSV_TABLE_H_

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace refgrove {

// A record that cannot be read: a quoted field without its closing quote,
// or text after one.
class CsvSyntaxError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class CsvRecords {
 public:
  CsvRecords(std::string_view text, char separator);

  // The next record's fields into `fields` and the line it starts on
  // (from 1) into `line`; false at the end of the text. Throws
  // CsvSyntaxError, `line` then naming the record's first line.
  bool next(std::vector<std::string>* fields, std::int64_t* line);

 private:
  // One field from at_; at_ is then at the separator or the record's end.
  std::string field();
  std::string quoted_field();
  bool at_record_end() const;
  void skip_record_end();

  std::string_view text_;
  char separator_;
  std::size_t at_ = 0;
  std::int64_t line_ = 1;  // the line at at_
};

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_CSV_TABLE_H_
