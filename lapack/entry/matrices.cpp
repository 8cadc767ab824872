// matrices.cpp - the forms of norms, copies and scaling.
#include "lapack/drivers/matrices.hpp"
#include "lapack/drivers/norms.hpp"
#include "lapack/entry/forms.hpp"

namespace vox::lapack {

namespace {

// The types of ?lascl that are bands, how many rows each stores, and what its widths may be.
bool is_band(char type) { return is(type, 'B') || is(type, 'Q') || is(type, 'Z'); }
index_t rows_scaled(char type, index_t kl, index_t ku, index_t m) {
    return is(type, 'B') ? kl + 1 : is(type, 'Q') ? ku + 1 : is(type, 'Z') ? 2 * kl + ku + 1 : m;
}
bool lower_fits(char type, index_t kl, index_t m) {
    return !is_band(type) || (kl >= 0 && kl <= most(m - 1, 0));
}
bool upper_fits(char type, index_t kl, index_t ku, index_t n) {
    return !is_band(type) || (ku >= 0 && ku <= most(n - 1, 0) && (is(type, 'Z') || kl == ku));
}

} // namespace

} // namespace vox::lapack

VOX_LAPACK_VALUE(ALL, lange, lange, LANGE, letter(norm), integer_in(m), integer_in(n),
                 in(a, lda, m, n), real_space(work, m))
VOX_LAPACK_VALUE(ALL, lansy, lansy, LANSY, letter(norm), letter(uplo), integer_in(n),
                 in_triangle(a, lda, uplo, 'N', n), real_space(work, n))
VOX_LAPACK_VALUE(COMPLEX, lanhe, lanhe, LANHE, letter(norm), letter(uplo), integer_in(n),
                 in_triangle(a, lda, uplo, 'N', n), real_space(work, n))
VOX_LAPACK_VALUE(ALL, lantr, lantr, LANTR, letter(norm), letter(uplo), letter(diag), integer_in(m),
                 integer_in(n), in_trapezoid(a, lda, uplo, diag, m, n), real_space(work, m))

VOX_LAPACK_QUIET(ALL, lacpy, lacpy, LACPY, letter(uplo), integer_in(m), integer_in(n),
                 in(a, lda, m, n), kept(b, ldb, m, n))
VOX_LAPACK_QUIET(ALL, laset, laset, LASET, letter(uplo), integer_in(m), integer_in(n),
                 scalar_in(alpha), scalar_in(beta), kept(a, lda, m, n))
VOX_LAPACK(ALL, lascl, lascl, LASCL, option(type, "GLUHBQZ"), integer_in(kl), integer_in(ku),
           require(cfrom != 0 && cfrom == cfrom, 4), real_in(cfrom), require(cto == cto, 5),
           real_in(cto), size(m), size(n), require((!is(type, 'B') && !is(type, 'Q')) || n == m, 7),
           require(lower_fits(type, kl, m), 2), require(upper_fits(type, kl, ku, n), 3),
           inout(a, lda, rows_scaled(type, kl, ku, m), n))
