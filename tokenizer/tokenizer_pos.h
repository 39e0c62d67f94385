// Positions of characters and tokens in a tokenizer's input.
#ifndef REFGROVE_TOKENIZER_TOKENIZER_POS_H_
#define REFGROVE_TOKENIZER_TOKENIZER_POS_H_

#include <ostream>
#include <string>

namespace refgrove {

// A row/column pair. `column` counts the characters read on the current line
// (0 before the first one, 1 after it), so a token's position, taken just
// after its first character, is printed as column - 1: printed columns are
// 0-based, rows 1-based. A negative field means "unknown"; a default
// position has both fields at -10.
class TokenizerPos {
 public:
  int column;
  int row;

  TokenizerPos() : column(-10), row(-10) {}

  // Row first, column second: the reverse of the field order.
  void set(int row_, int column_) {
    row = row_;
    column = column_;
  }

  // Start of the next line; the scanner calls this after a newline.
  void incRow() {
    ++row;
    column = 0;
  }

  bool equals(const TokenizerPos& other) const { return column == other.column && row == other.row; }

  // "row:column-1", or "?:?" when both fields are negative. No padding and
  // no line end.
  std::ostream& write(std::ostream& os) const;

  // Fixed-width text for listings: the row right-aligned in `row_width`
  // characters, ":", the column left-aligned in `column_width` characters.
  // An unknown field prints as "?". Texts longer than their width are not
  // cut.
  std::string getString(int row_width, int column_width) const;
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_TOKENIZER_POS_H_
