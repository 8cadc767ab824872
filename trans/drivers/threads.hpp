// threads.hpp - operations on several threads: a region of the general domain's thread count, in which
// each thread works on its part of the matrix.
#pragma once

#include "serv/parallel.hpp"
#include "trans/drivers/parts.hpp"
#include "vox/service.h"

namespace vox::trans {

template <class Body>
void divide(index_t rows, index_t cols, const Body &body) {
    parallel(vox_serv_domain_get_max_threads(VOX_DOMAIN_ALL), [&](int thread, int team) {
        const part mine = part_of(thread, team, rows, cols);
        if (!mine.empty())
            body(mine);
    });
}

// ?omatcopy2; one_thread is the sequential driver.
constexpr auto copy_parts = [](auto one_thread, char ordering, char trans, index_t rows,
                               index_t cols, auto alpha, const auto *a, index_t lda,
                               index_t stridea, auto *b, index_t ldb, index_t strideb) {
    const request asked(ordering, trans);
    divide(rows, cols, [=](const part &p) {
        const index_t in_a = offset(asked.by_rows, p.row, p.col, lda, stridea);
        const index_t in_b = asked.transposed ? offset(asked.by_rows, p.col, p.row, ldb, strideb)
                                              : offset(asked.by_rows, p.row, p.col, ldb, strideb);
        one_thread(ordering, trans, p.rows, p.cols, alpha, a + in_a, lda, stridea, b + in_b, ldb,
                   strideb);
    });
};

// ?omatadd: parts of C. One thread for little, as the copies have it.
constexpr auto add = [](auto one_thread, char ordering, char transa, char transb, index_t m,
                        index_t n, auto alpha, const auto *a, index_t lda, auto beta, const auto *b,
                        index_t ldb, auto *c, index_t ldc) {
    using T = decltype(alpha);
    const request of_a(ordering, transa), of_b(ordering, transb);
    if (m <= 0 || n <= 0 || !of_a.valid || !of_b.valid)
        return;
    if (!is_divided<T>(m, n))
        return one_thread(ordering, transa, transb, m, n, alpha, a, lda, beta, b, ldb, c, ldc);
    divide(m, n, [=](const part &p) {
        const auto in = [&p](const request &of, index_t ld) {
            return of.transposed ? offset(of.by_rows, p.col, p.row, ld)
                                 : offset(of.by_rows, p.row, p.col, ld);
        };
        one_thread(ordering, transa, transb, p.rows, p.cols, alpha, a + in(of_a, lda), lda, beta,
                   b + in(of_b, ldb), ldb, c + offset(of_a.by_rows, p.row, p.col, ldc), ldc);
    });
};

} // namespace vox::trans
