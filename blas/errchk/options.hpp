// options.hpp - what makes an option letter or a leading dimension a bad argument.
#pragma once

#include "serv/base.hpp"

namespace vox::errchk {

// Option letters in either case.
[[gnu::always_inline]] inline bool is(const char *letter, char lower) {
    return (*letter | 0x20) == lower;
}
[[gnu::always_inline]] inline bool bad_trans(const char *c) {
    return !is(c, 'n') && !is(c, 't') && !is(c, 'c');
}
[[gnu::always_inline]] inline bool bad_uplo(const char *c) { return !is(c, 'u') && !is(c, 'l'); }
[[gnu::always_inline]] inline bool bad_diag(const char *c) { return !is(c, 'n') && !is(c, 'u'); }
[[gnu::always_inline]] inline bool bad_side(const char *c) { return !is(c, 'l') && !is(c, 'r'); }
// Of an update of rank k: besides 'N', the symmetric take 'T' and the Hermitian 'C'; real ones both.
[[gnu::always_inline]] inline bool bad_update_trans(const char *c, bool complex, bool hermitian) {
    return !is(c, 'n') && !(is(c, 't') && !hermitian) && !(is(c, 'c') && (hermitian || !complex));
}

// lda < max(1, rows).
[[gnu::always_inline]] inline bool bad_lda(index_t lda, index_t rows) {
    return lda < rows || lda < 1;
}

} // namespace vox::errchk
