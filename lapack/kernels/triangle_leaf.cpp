// triangle_leaf.cpp - Cholesky factor, inverse and product of a triangle of a few dozen columns.
//
// The block is taken to the stack, real and imaginary parts in planes of their own, so that complex
// arithmetic needs no shuffles; transposed where that gives the form that is computed: lower for the
// factor, upper for the inverse and the product. There, four columns at a time are finished: strips
// of their rows lose the products of the columns before (or gain those after), in registers, and are
// then divided by the corner of order four, which is scalar work. Orders that are no multiple of four
// are filled up with the identity.
#include <limits>

#include "lapack/triangle_leaf.hpp"
#include "serv/simd.hpp"

namespace {

using namespace simd;
using vox::conj_if;
using vox::divide;
using vox::imag;
using vox::is_complex;
using vox::make;
using vox::real;
using vox::real_of;

#define VOX_INLINE __attribute__((always_inline)) inline

constexpr int width = 4; // columns that are finished together

// A triangle of the array in planes; what is beside it is zero.
template <class T>
struct planes {
    using R = real_of<T>;
    static constexpr index_t most = vox::lapack::triangle_leaf<T>;
    // A strip: the rows whose sums for `width` columns are in registers. Of the widest vectors, those
    // of complex double are halves, which fit small triangles better.
    static constexpr int bytes = vector_bytes == 64 && sizeof(T) == 16 ? 32 : vector_bytes;
    static constexpr int lanes = bytes / int(sizeof(R));
    static constexpr int vectors = is_complex<T> || vector_bytes == 64 ? 1 : 2,
                         strip = vectors * lanes;
    static_assert(most % strip == 0 && most % width == 0);
    using V = typename vec_of<R, bytes>::type;

    alignas(64) R re[most * most];
    alignas(64) R im[is_complex<T> ? most * most : 1];
    index_t n, ld; // the order, a multiple of `width`; the rows, of `strip` too

    VOX_INLINE T get(index_t i, index_t j) const {
        if constexpr (is_complex<T>)
            return {re[i + j * ld], im[i + j * ld]};
        else
            return re[i + j * ld];
    }
    VOX_INLINE void set(index_t i, index_t j, T value) {
        re[i + j * ld] = real(value);
        if constexpr (is_complex<T>)
            im[i + j * ld] = imag(value);
    }

    // body(i, j) for the elements of a triangle of order `order`, by columns.
    template <class Body>
    static VOX_INLINE void each(bool upper, index_t order, const Body &body) {
        for (index_t j = 0; j < order; ++j)
            for (index_t i = upper ? 0 : j, end = upper ? j + 1 : order; i < end; ++i)
                body(i, j);
    }
    VOX_INLINE planes(bool upper, bool transposed, index_t order, const T *a, index_t lda) {
        n = (order + width - 1) / width * width;
        ld = (n + strip - 1) / strip * strip;
        constexpr V zero{};
        const index_t size = n * ld; // both of which the stores could reach, for all that gcc knows
        for (index_t i = 0; i < size; i += lanes) {
            store(re + i, zero);
            if constexpr (is_complex<T>)
                store(im + i, zero);
        }
        if (transposed)
            each(upper, order,
                 [&](index_t i, index_t j) VOX_INLINED { set(j, i, a[i + j * lda]); });
        else
            each(upper, order,
                 [&](index_t i, index_t j) VOX_INLINED { set(i, j, a[i + j * lda]); });
        for (index_t j = order; j < n; ++j)
            re[j + j * ld] = 1;
    }
    VOX_INLINE void bring_home(bool upper, bool transposed, index_t order, T *a,
                               index_t lda) const {
        if (transposed)
            each(upper, order,
                 [&](index_t i, index_t j) VOX_INLINED { a[i + j * lda] = get(j, i); });
        else
            each(upper, order,
                 [&](index_t i, index_t j) VOX_INLINED { a[i + j * lda] = get(i, j); });
    }
};

// The triangle of order `width` by which a strip is divided from the right: above its diagonal, and
// the diagonal's reciprocals.
template <class T>
struct corner {
    T above[width][width];
    T reciprocal[width];
};

// A strip of `width` columns.
template <class T>
struct tile {
    using R = real_of<T>;
    using V = typename planes<T>::V;
    static constexpr int bytes = planes<T>::bytes, lanes = planes<T>::lanes;
    static constexpr int rows = planes<T>::vectors, parts = is_complex<T> ? rows : 1;
    V re[rows][width], im[parts][width];

    VOX_INLINE void clear() {
        unroll<width>([&](auto q) VOX_INLINED {
            unroll<rows>([&](auto r) VOX_INLINED {
                re[r][q] = V{};
                if constexpr (is_complex<T>)
                    im[r][q] = V{};
            });
        });
    }
    VOX_INLINE void load(const planes<T> &p, index_t i, index_t j) {
        const index_t ld = p.ld;
        unroll<width>([&](auto q) VOX_INLINED {
            unroll<rows>([&](auto r) VOX_INLINED {
                const index_t at = i + r * lanes + (j + q) * ld;
                re[r][q] = simd::load<bytes>(p.re + at);
                if constexpr (is_complex<T>)
                    im[r][q] = simd::load<bytes>(p.im + at);
            });
        });
    }
    // Times `sign`.
    template <int sign>
    VOX_INLINE void store(planes<T> &p, index_t i, index_t j) const {
        const index_t ld = p.ld;
        unroll<width>([&](auto q) VOX_INLINED {
            unroll<rows>([&](auto r) VOX_INLINED {
                const index_t at = i + r * lanes + (j + q) * ld;
                simd::store(p.re + at, sign > 0 ? re[r][q] : -re[r][q]);
                if constexpr (is_complex<T>)
                    simd::store(p.im + at, sign > 0 ? im[r][q] : -im[r][q]);
            });
        });
    }
    // Column q loses column x times y, or conj(y).
    template <bool conjugate, int q>
    VOX_INLINE void subtract(const V (&x_re)[rows], const V (&x_im)[parts], R y_re, R y_im) {
        const V b = broadcast<bytes>(y_re);
        unroll<rows>([&](auto r) VOX_INLINED { re[r][q] -= x_re[r] * b; });
        if constexpr (is_complex<T>) {
            const V c = broadcast<bytes>(y_im);
            unroll<rows>([&](auto r) VOX_INLINED {
                im[r][q] -= x_im[r] * b;
                if constexpr (conjugate) {
                    re[r][q] -= x_im[r] * c;
                    im[r][q] += x_re[r] * c;
                } else {
                    re[r][q] += x_im[r] * c;
                    im[r][q] -= x_re[r] * c;
                }
            });
        }
    }
    // Column q loses the sum over k in [first, end) of columns k of the planes, rows i ..., times
    // what lies there at y + k * y_next + q * y_across.
    template <bool conjugate>
    VOX_INLINE void subtract_all(const planes<T> &p, index_t i, index_t first, index_t end,
                                 index_t y, index_t y_next, index_t y_across) {
        for (index_t k = first; k < end; ++k) {
            V x_re[rows], x_im[parts];
            unroll<rows>([&](auto r) VOX_INLINED {
                x_re[r] = simd::load<bytes>(p.re + i + r * lanes + k * p.ld);
                if constexpr (is_complex<T>)
                    x_im[r] = simd::load<bytes>(p.im + i + r * lanes + k * p.ld);
            });
            unroll<width>([&](auto q) VOX_INLINED {
                const index_t at = y + k * y_next + q * y_across;
                subtract<conjugate, q>(x_re, x_im, p.re[at], is_complex<T> ? p.im[at] : R{});
            });
        }
    }
    // This := this C^-1.
    template <bool real_diagonal>
    VOX_INLINE void divide_by(const corner<T> &c) {
        unroll<width>([&](auto q) VOX_INLINED {
            unroll<q>([&](auto p) VOX_INLINED {
                V x_re[rows], x_im[parts];
                unroll<rows>([&](auto r) VOX_INLINED {
                    x_re[r] = re[r][p];
                    if constexpr (is_complex<T>)
                        x_im[r] = im[r][p];
                });
                subtract<false, q>(x_re, x_im, real(c.above[p][q]), imag(c.above[p][q]));
            });
            const V b = broadcast<bytes>(real(c.reciprocal[q]));
            unroll<rows>([&](auto r) VOX_INLINED {
                if constexpr (!is_complex<T>) {
                    re[r][q] *= b;
                } else {
                    const V x = re[r][q], y = im[r][q];
                    re[r][q] = x * b;
                    im[r][q] = y * b;
                    if constexpr (!real_diagonal) {
                        const V d = broadcast<bytes>(imag(c.reciprocal[q]));
                        re[r][q] -= y * d;
                        im[r][q] += x * d;
                    }
                }
            });
        });
    }
};

// The first strip that holds rows of the corner at j.
template <class T>
VOX_INLINE index_t strip_of(index_t j) {
    return j / planes<T>::strip * planes<T>::strip;
}

// a - b c, part by part in two steps.
template <class T>
VOX_INLINE T minus_product(T a, T b, T c) {
    if constexpr (is_complex<T>)
        return {a.real - b.real * c.real + b.imag * c.imag,
                a.imag - b.real * c.imag - b.imag * c.real};
    else
        return a - b * c;
}

// Four columns of L from A's: the corner of A, from which the products of the columns before have
// been taken, is factored, with conj(L) transposed above the diagonal of c. The order of the first
// minor of the corner that is not positive, or 0; what precedes it is then in the planes, but for the
// diagonal, which comes apart.
//
// From one pivot d to the next leads a division only: x being a column of L times the root of d, the
// products of L's elements are those of x and x / d. A subnormal d has no reciprocal, and infinity's
// does not give the root's.
template <class T>
VOX_INLINE int factor_corner(planes<T> &p, index_t j, index_t order, corner<T> &c,
                             real_of<T> *diagonal) {
    using R = real_of<T>;
    T x[width][width], l[width][width];
    unroll<width>([&](auto q) VOX_INLINED {
        unroll<width>([&](auto i) VOX_INLINED {
            if constexpr (i >= q)
                x[i][q] = p.get(j + i, j + q);
        });
    });
    int bad = 0;
    unroll<width>([&](auto q) VOX_INLINED {
        if (bad || j + q >= order) {
            c.reciprocal[q] = make<T>(1);
            return;
        }
        const R d = real(x[q][q]);
        if (!(d > 0)) { // or not a number
            bad = q + 1;
            diagonal[q] = d;
            return;
        }
        diagonal[q] = sizeof(d) == 4 ? __builtin_sqrtf(d) : __builtin_sqrt(d);
        const R inverse = 1 / d;
        const bool extreme = !(d >= std::numeric_limits<R>::min() && inverse > 0);
        const R reciprocal = extreme ? 1 / diagonal[q] : diagonal[q] * inverse;
        c.reciprocal[q] = make<T>(reciprocal);
        unroll<width>([&](auto i) VOX_INLINED {
            if constexpr (i > q) {
                l[i][q] = x[i][q] * reciprocal;
                c.above[q][i] = conj_if(true, l[i][q]);
            }
        });
        unroll<width>([&](auto k) VOX_INLINED {
            if constexpr (k > q) {
                const T y = conj_if(true, extreme ? l[k][q] : x[k][q] * inverse);
                unroll<width>([&](auto i) VOX_INLINED {
                    if constexpr (i >= k)
                        x[i][k] = minus_product(x[i][k], extreme ? l[i][q] : x[i][q], y);
                });
            }
        });
    });
    for (int k = 0; k < bad - 1; ++k)
        for (int i = k + 1; i < width; ++i)
            p.set(j + i, j + k, conj_if(true, c.above[k][i]));
    return bad;
}

template <class T>
VOX_INLINE index_t potrf(bool upper, index_t order, T *a, index_t lda) {
    planes<T> p(upper, upper, order, a, lda);
    if constexpr (is_complex<T>)
        for (index_t j = 0; j < order; ++j)
            p.im[j + j * p.ld] = 0;
    real_of<T> diagonal[planes<T>::most];
    index_t info = 0;
    for (index_t j = 0; j < p.n; j += width) {
        tile<T> t;
        const auto lose_columns_before = [&](index_t i) VOX_INLINED {
            t.load(p, i, j);
            t.template subtract_all<true>(p, i, 0, j, j, p.ld, 1);
        };
        const index_t first = strip_of<T>(j);
        for (index_t i = first; i < j + width && j > 0; i += p.strip) {
            lose_columns_before(i);
            t.template store<1>(p, i, j);
        }
        corner<T> c{};
        const int at = factor_corner(p, j, order, c, diagonal + j);
        if (at) {
            info = j + at;
            break;
        }
        for (index_t i = first; i < p.ld; i += p.strip) {
            if (i < j + width)
                t.load(p, i, j); // the corner's rows become L's there
            else
                lose_columns_before(i);
            t.template divide_by<true>(c);
            t.template store<1>(p, i, j);
        }
    }
    p.bring_home(upper, upper, order, a, lda);
    for (index_t j = 0, end = info ? info : order; j < end; ++j)
        a[j + j * lda] = make<T>(diagonal[j]);
    return info;
}

// Columns of X = U^-1 from left to right: above the corner, minus X's columns before times U's rows
// there, divided by the corner.
template <class T>
VOX_INLINE void trtri(bool upper, bool unit, index_t order, T *a, index_t lda) {
    planes<T> p(upper, !upper, order, a, lda);
    T diagonal[planes<T>::most];
    for (index_t j = 0; j < order && unit; ++j) {
        diagonal[j] = p.get(j, j);
        p.set(j, j, make<T>(1));
    }
    for (index_t j = 0; j < p.n; j += width) {
        corner<T> c;
        T inverse[width][width];
        for (int q = 0; q < width; ++q) {
            c.reciprocal[q] = divide(make<T>(1), p.get(j + q, j + q));
            for (int i = 0; i < q; ++i)
                c.above[i][q] = p.get(j + i, j + q);
        }
        for (int q = 0; q < width; ++q) {
            inverse[q][q] = c.reciprocal[q];
            for (int i = 0; i < q; ++i) {
                T x{};
                for (int k = i; k < q; ++k)
                    x -= inverse[i][k] * c.above[k][q];
                inverse[i][q] = x * c.reciprocal[q];
            }
        }
        for (index_t i = 0; i < j; i += p.strip) { // a strip reads U's rows only from its own on
            tile<T> t;
            t.clear();
            t.template subtract_all<false>(p, i, i, j, j * p.ld, 1, p.ld);
            t.template divide_by<false>(c);
            t.template store<1>(p, i, j);
        }
        for (int q = 0; q < width; ++q)
            for (int i = 0; i <= q; ++i)
                p.set(j + i, j + q, inverse[i][q]);
    }
    for (index_t j = 0; j < order && unit; ++j)
        p.set(j, j, diagonal[j]);
    p.bring_home(upper, !upper, order, a, lda);
}

// Columns of U U^H from left to right: they need those of U from their own on, which are still there.
// A transposed triangle stands for its conjugate, and so does the product.
template <class T>
VOX_INLINE void lauum(bool upper, index_t order, T *a, index_t lda) {
    planes<T> p(upper, !upper, order, a, lda);
    if constexpr (is_complex<T>)
        for (index_t j = 0; j < order; ++j)
            p.im[j + j * p.ld] = 0;
    for (index_t j = 0; j < p.n; j += width) {
        for (index_t i = 0; i < j + width; i += p.strip) {
            tile<T> t;
            t.clear();
            t.template subtract_all<true>(p, i, j, p.n, j, p.ld, 1);
            t.template store<-1>(p, i, j);
        }
        if constexpr (is_complex<T>)
            for (index_t q = j; q < j + width; ++q)
                p.im[q + q * p.ld] = 0;
    }
    p.bring_home(upper, !upper, order, a, lda);
}

} // namespace

#define KERNELS(p, P, T)                                                                           \
    extern "C" vox::index_t VOX_KERNEL_NAMED(lapack, p##potrf_leaf) VOX_POTRF_LEAF_PARAMETERS(T) { \
        return potrf(upper, n, a, lda);                                                            \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(lapack, p##trtri_leaf) VOX_TRTRI_LEAF_PARAMETERS(T) {         \
        trtri(upper, unit, n, a, lda);                                                             \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(lapack, p##lauum_leaf) VOX_LAUUM_LEAF_PARAMETERS(T) {         \
        lauum(upper, n, a, lda);                                                                   \
    }
VOX_PRECISIONS(KERNELS)
