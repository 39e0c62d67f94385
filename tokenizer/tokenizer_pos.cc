#include "tokenizer/tokenizer_pos.h"

namespace refgrove {

std::ostream& TokenizerPos::write(std::ostream& os) const {
  if (column < 0 && row < 0) return os << "?:?";
  return os << row << ':' << (column - 1);
}

std::string TokenizerPos::getString(int row_width, int column_width) const {
  const std::string row_text = row < 0 ? "?" : std::to_string(row);
  const std::string column_text = column < 0 ? "?" : std::to_string(column - 1);
  std::string out;
  const int row_pad = row_width - static_cast<int>(row_text.size());
  if (row_pad > 0) out.append(static_cast<std::size_t>(row_pad), ' ');
  out += row_text;
  out += ':';
  out += column_text;
  const int column_pad = column_width - static_cast<int>(column_text.size());
  if (column_pad > 0) out.append(static_cast<std::size_t>(column_pad), ' ');
  return out;
}

}  // namespace refgrove
