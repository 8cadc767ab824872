// omatadd.cpp - ?omatadd of one code path, on one thread: C := alpha op(A) + beta op(B).
//
// Sums are formed row by row of C. An operand that is to be transposed goes through a block on the
// stack, an operand that is not may be C itself.
#include "trans/kernels/transpose.hpp"
#include "trans/trans.hpp"

namespace {
namespace trans {

// x times a real factor, conjugated if asked for: what scaled does where there is no imaginary part,
// without products of zeros.
template <class T>
struct weighted {
    real_of<T> factor;
    bool conjugate;

    template <class V>
    VOX_INLINE V operator()(V v) const {
        using N = numbers<T, V>;
        if constexpr (is_complex<T>)
            return V(N(v) * broadcast_pair<int(sizeof(V))>(factor, conjugate ? -factor : factor));
        else
            return V(N(v) * factor);
    }
};

// One rounding is left to the compiler's choice, whether it fuses the first operand's product.
template <class T, class OpA, class OpB>
VOX_INLINE void add_row(const OpA &op_a, const OpB &op_b, index_t n, const T *a, const T *b, T *c) {
    using R = real_of<T>;
    constexpr int unit = int(sizeof(T) / sizeof(R)), w = vector_bytes / int(sizeof(T));
    const auto *const x = reinterpret_cast<const R *>(a), *const y = reinterpret_cast<const R *>(b);
    auto *const z = reinterpret_cast<R *>(c);
    const auto sum = [&](auto u, auto v) VOX_INLINED { return op_a(u) + in_register(op_b(v)); };
    index_t i = 0;
    for (; i + w <= n; i += w)
        store(z + i * unit, sum(load(x + i * unit), load(y + i * unit)));
    for (; i < n; ++i)
        store_element(c + i, sum(load_element(a + i), load_element(b + i)));
}

template <class T>
struct operand {
    const T *p;
    index_t ld;
    bool transposed;
};

// An operand's block at (i, j) of op(A), as rows: where it is, or transposed into `block`.
constexpr index_t add_rows = 32, add_cols = 32;
template <class T>
using add_block = T[add_rows * add_cols];
template <class T>
VOX_INLINE operand<T> rows_of(const operand<T> &a, index_t i, index_t j, index_t m, index_t n,
                              add_block<T> &block) {
    if (!a.transposed)
        return {a.p + i * a.ld + j, a.ld, false};
    piece(moved<T>(), problem<T>{n, m, a.p + j * a.ld + i, a.ld, block, add_cols});
    return {block, add_cols, false};
}

template <class T, class OpA, class OpB>
VOX_INLINE void add(const OpA &op_a, const OpB &op_b, index_t outer, index_t inner,
                    const operand<T> &a, const operand<T> &b, T *c, index_t ldc) {
    alignas(64) add_block<T> block_a, block_b;
    const bool direct = !a.transposed && !b.transposed;
    const index_t height = direct ? outer : add_rows, width = direct ? inner : add_cols;
    for (index_t i = 0; i < outer; i += height)
        for (index_t j = 0; j < inner; j += width) {
            const index_t m = outer - i < height ? outer - i : height;
            const index_t n = inner - j < width ? inner - j : width;
            const operand<T> x = rows_of(a, i, j, m, n, block_a);
            const operand<T> y = rows_of(b, i, j, m, n, block_b);
            for (index_t r = 0; r < m; ++r)
                add_row(op_a, op_b, n, x.p + r * x.ld, y.p + r * y.ld, c + (i + r) * ldc + j);
        }
}

template <class T>
VOX_INLINE void zeros(index_t outer, index_t inner, T *c, index_t ldc) {
    for (index_t i = 0; i < outer; ++i)
        for (index_t j = 0; j < inner; ++j)
            c[i * ldc + j] = T{};
}

// seq: the copy of one thread, for a sum of one operand.
template <class T, class Seq>
VOX_INLINE void omatadd(Seq *seq, char ordering, char transa, char transb, index_t m, index_t n,
                        T alpha, const T *a, index_t lda, T beta, const T *b, index_t ldb, T *c,
                        index_t ldc) {
    const vox::trans::request of_a(ordering, transa), of_b(ordering, transb);
    const index_t outer = of_a.by_rows ? m : n, inner = of_a.by_rows ? n : m;
    if (vox::is_zero(alpha) && vox::is_zero(beta))
        return zeros(outer, inner, c, ldc);
    if (vox::is_zero(beta))
        return seq(ordering, transa, of_a.transposed ? n : m, of_a.transposed ? m : n, alpha, a,
                   lda, 1, c, ldc, 1);
    if (vox::is_zero(alpha))
        return seq(ordering, transb, of_b.transposed ? n : m, of_b.transposed ? m : n, beta, b, ldb,
                   1, c, ldc, 1);
    const operand<T> x{a, lda, of_a.transposed}, y{b, ldb, of_b.transposed};
    if (vox::imag(alpha) == 0 && vox::imag(beta) == 0)
        return add(weighted<T>{vox::real(alpha), of_a.conjugated},
                   weighted<T>{vox::real(beta), of_b.conjugated}, outer, inner, x, y, c, ldc);
    if constexpr (is_complex<T>)
        add(scaled<T>{alpha, of_a.conjugated}, scaled<T>{beta, of_b.conjugated}, outer, inner, x, y,
            c, ldc);
}

} // namespace trans
} // namespace

#define OMATADD(p, P, T)                                                                           \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_seq) VOX_OMATCOPY2_PARAMETERS(T);   \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatadd_seq) VOX_OMATADD_PARAMETERS(T) {      \
        trans::omatadd<T>(VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_seq), ordering, transa,       \
                          transb, m, n, alpha, a, lda, beta, b, ldb, c, ldc);                      \
    }
VOX_PRECISIONS(OMATADD)
