// Texts of the data set as Prolog atoms, and atoms back as the bytes that
// the data set stores.
//
// The dumps carry bytes, mostly UTF-8 but not always. A text that is valid
// UTF-8 becomes the atom of the characters it encodes (an author named
// "Erd\xc5\x91s" arrives as Erdős); any other text becomes one character per
// byte, so that nothing is lost and the mapping stays one-to-one for every
// text of a data set.
#ifndef REFGROVE_SWIPL_PROLOG_TEXT_H_
#define REFGROVE_SWIPL_PROLOG_TEXT_H_

#include <SWI-Prolog.h>
#include <SWI-Stream.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace refgrove::swipl {

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool is_valid_utf8(std::string_view bytes);

// Unifies `t` with the atom for `text` (see above), or with the string
// when `type` is PL_STRING.
bool unify_text(term_t t, std::string_view text, int type = PL_ATOM);

// Unifies `t` with the list of atoms for `texts`, in their order.
bool unify_text_atoms(term_t t, std::span<const std::string_view> texts);

// Unifies `t` with the list of `values`, in their order.
bool unify_int_list(term_t t, std::span<const int> values);

// The byte strings that read back as the atom or string `t`: its UTF-8
// encoding and, when every character is below 256 and those bytes are not
// valid UTF-8, its one-byte-per-character form. Empty when `t` is no text.
std::vector<std::string> stored_forms(term_t t);

// Writes `text` to `stream` character by character, each blank-separated
// word decoded as unify_text would decode it, so that what a printing
// predicate writes matches the atoms of the same texts. Returns false with
// an exception pending when the stream fails.
bool write_text(IOSTREAM* stream, std::string_view text);

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_PROLOG_TEXT_H_
