#include "tokenizer/parser_error.h"

namespace refgrove {

ParserError::ParserError(const std::string& message_, const TokenizerPos& pos_, const char* file_name_)
    : message(message_), file_name(file_name_ != nullptr ? file_name_ : ""), pos(pos_) {}

bool ParserError::equals(const ParserError* other) const {
  return message == other->message && file_name == other->file_name && pos.equals(other->pos);
}

std::ostream& ParserError::write(std::ostream& os) const {
  os << message << " at ";
  pos.write(os);
  if (!file_name.empty()) os << ", while reading '" << file_name << "'";
  return os;
}

}  // namespace refgrove
