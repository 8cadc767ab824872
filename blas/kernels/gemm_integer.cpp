// gemm_integer.cpp - products of integers of 8 and of 16 bits, with sums of 32.
//
// Everything is packed as 16 bits, two steps in depth side by side in 32: one instruction multiplies the
// pairs and adds the two products, exactly (but for -2^15 four times, where it wraps as the sums do).
// The offsets of A and B are not added to their elements, which might not fit then:
//
//     (A + ao)(B + bo) = A B + bo (A's row sums) + ao (B's column sums) + k ao bo
//
// in arithmetic modulo 2^32 throughout, so that what fits in the end is right. As products of blocks (see
// packed.hpp), but a sum is complete before it is scaled, so a block of sums is kept while the depth is
// worked off.
#include "blas/integer_products.hpp"
#include "blas/kernels/blocks.hpp"
#include "blas/kernels/packing.hpp"
#include "serv/scratch.hpp"

namespace {

using vox::integer_factor;
using vox::integer_product;
using vox::integer_type;

// Vectors as wide as the path multiplies integers.
#if defined(__AVX512BW__)
constexpr int int_bytes = 64, V = 2, N = 8;
#elif defined(__AVX2__)
constexpr int int_bytes = 32, V = 2, N = 4;
#else
constexpr int int_bytes = 16, V = 2, N = 4;
#endif
constexpr int L = int_bytes / 4;
constexpr index_t mr = V * L, nr = N;
using ints = vec_of<uint32_t, int_bytes>::type;

VOX_INLINE ints multiply_pairs(ints a, ints b) {
#if defined(__AVX512BW__)
    return ints(_mm512_madd_epi16(__m512i(a), __m512i(b)));
#elif defined(__AVX2__)
    return ints(_mm256_madd_epi16(__m256i(a), __m256i(b)));
#else
    return ints(_mm_madd_epi16(__m128i(a), __m128i(b)));
#endif
}

// tile (+)= A B of a strip of A, mr pairs a step, and one of B, nr pairs a step; tile by columns.
__attribute__((noinline)) void multiply_pair_strips(index_t pairs, const uint32_t *a,
                                                    const uint32_t *b, bool add, uint32_t *tile) {
    ints sums[V * N];
    unroll<V * N>([&](auto i) VOX_INLINED { sums[i] = ints{}; });
    for (index_t q = 0; q < pairs; ++q, a += mr, b += nr) {
        ints rows[V];
        unroll<V>([&](auto v) VOX_INLINED { rows[v] = in_register(load<int_bytes>(a + v * L)); });
        unroll<N>([&](auto j) VOX_INLINED {
            const ints x = in_register(broadcast<int_bytes>(b[j]));
            unroll<V>([&](auto v) VOX_INLINED { sums[j * V + v] += multiply_pairs(rows[v], x); });
        });
    }
    unroll<V * N>([&](auto i) VOX_INLINED {
        uint32_t *const to = tile + i * L;
        store(to, add ? sums[i] + load<int_bytes>(to) : sums[i]);
    });
}

// Packing.

template <class S>
VOX_INLINE uint32_t pair_of(S low, S high) {
    return uint32_t(uint16_t(low)) | uint32_t(uint16_t(high)) << 16;
}

// Rows stored side by side: element (i, p) is x[i + p ld].
template <class S, int W>
__attribute__((noinline)) void pack_down(const S *x, index_t ld, index_t rows, index_t depth,
                                         uint32_t *to) {
    index_t p = 0;
    if (rows == W)
        for (; p + 2 <= depth; p += 2, x += 2 * ld, to += W)
            for (int i = 0; i < W; ++i)
                to[i] = pair_of(x[i], x[i + ld]);
    for (; p < depth; p += 2, x += 2 * ld, to += W)
        for (index_t i = 0; i < W; ++i)
            to[i] = i < rows ? pair_of(x[i], p + 1 < depth ? x[i + ld] : S(0)) : 0;
}

// K pairs of a row whose steps stand one behind the other; as floats, for the sake of the shuffles.
template <int K, class S>
VOX_INLINE auto load_pairs(const S *x) {
    using words = typename vec_of<int16_t, 4 * K>::type;
    using pairs = typename vec_of<float, 4 * K>::type;
    return pairs(__builtin_convertvector(load<2 * K *int(sizeof(S))>(x), words));
}

// Rows stored one behind the other: element (i, p) is x[p + i ld].
template <class S, int W>
__attribute__((noinline)) void pack_right(const S *x, index_t ld, index_t rows, index_t depth,
                                          uint32_t *to) {
    constexpr int K = W < L ? W : L;
    const index_t squares_end = depth - depth % (2 * K), rows_done = rows - rows % K;
    for (index_t p = 0; p < squares_end; p += 2 * K)
        for (index_t i = 0; i < rows_done; i += K) {
            typename vec_of<float, 4 * K>::type square[K];
            unroll<K>([&](auto r) VOX_INLINED { square[r] = load_pairs<K>(x + p + (i + r) * ld); });
            transpose<1, 1>(square);
            unroll<K>([&](auto r) VOX_INLINED {
                store(reinterpret_cast<float *>(to + (p / 2 + r) * W + i), square[r]);
            });
        }
    for (index_t p = 0; p < depth; p += 2)
        for (index_t i = p < squares_end ? rows_done : 0; i < W; ++i) {
            const S *const row = x + p + i * ld;
            to[p / 2 * W + i] = i < rows ? pair_of(row[0], p + 1 < depth ? row[1] : S(0)) : 0;
        }
}

template <int W, class S>
VOX_INLINE void pack_typed(const S *x, const integer_factor &f, index_t i0, index_t i1, index_t p0,
                           index_t p1, index_t pitch, uint32_t *to) {
    for (index_t i = i0; i < i1; i += W, to += pitch) {
        const index_t rows = least(W, i1 - i);
        if (f.transposed)
            pack_right<S, W>(x + p0 + i * f.ld, f.ld, rows, p1 - p0, to);
        else
            pack_down<S, W>(x + i + p0 * f.ld, f.ld, rows, p1 - p0, to);
    }
}

// Rows i0 .. i1 and steps p0 .. p1 of a left factor as strips of W rows.
template <int W>
void pack_integers(const integer_factor &f, index_t i0, index_t i1, index_t p0, index_t p1,
                   index_t pitch, uint32_t *to) {
    switch (f.type) {
    case integer_type::s8:
        return pack_typed<W>(static_cast<const int8_t *>(f.data), f, i0, i1, p0, p1, pitch, to);
    case integer_type::u8:
        return pack_typed<W>(static_cast<const uint8_t *>(f.data), f, i0, i1, p0, p1, pitch, to);
    case integer_type::s16:
        return pack_typed<W>(static_cast<const int16_t *>(f.data), f, i0, i1, p0, p1, pitch, to);
    }
}

// The sums of the rows of packed strips, added to `sums` or in their place.
template <int W>
void sum_rows(const uint32_t *strip, index_t strips, index_t pairs, bool add, uint32_t *sums) {
    for (index_t s = 0; s < strips; ++s, sums += W) {
        if (!add)
            for (int i = 0; i < W; ++i)
                sums[i] = 0;
        // Whole vectors, of one step or of several.
        constexpr int step = W < L ? L : W;
        const ints ones = broadcast<int_bytes>(uint32_t(0x10001));
        ints found[step / L];
        unroll<step / L>([&](auto v) VOX_INLINED { found[v] = ints{}; });
        const uint32_t *const end = strip + pairs * W;
        for (; end - strip >= step; strip += step)
            unroll<step / L>([&](auto v) VOX_INLINED {
                found[v] += multiply_pairs(load<int_bytes>(strip + v * L), ones);
            });
        unroll<step / L>([&](auto v) VOX_INLINED {
            for (int i = 0; i < L; ++i)
                sums[(v * L + i) % W] += found[v][i];
        });
        for (int i = 0; strip < end; ++strip, i = (i + 1) % W)
            sums[i] += uint32_t(int16_t(*strip)) + uint32_t(int32_t(*strip) >> 16);
    }
}

// The nearest integer; beyond 32 bits, and for NaN, an end of the range.
VOX_INLINE int32_t to_integer(double x) {
    const double low = x < 2147483647.0 ? x : 2147483647.0;
    const double both = low > -2147483648.0 ? low : -2147483648.0;
    // Beside 1.5 2^52 there is room for an integer, which the last bits then are.
    const double sum = both + 6755399441055744.0;
    return int32_t(__builtin_bit_cast(int64_t, sum));
}

// How sums become elements of C.
struct ending {
    double alpha, beta;
    bool as_it_is; // alpha = 1, beta = 0, and nothing is added
};

// C := alpha S + beta C + co for a column of n sums; adding the rows' terms and the column's makes them
// whole.
VOX_INLINE void finish_column(index_t n, const ending &e, const uint32_t *__restrict sums,
                              const uint32_t *__restrict row_terms, uint32_t column_term,
                              const double *__restrict offsets, double offset,
                              int32_t *__restrict c) {
    const auto whole = [&](index_t i)
                           VOX_INLINED { return int32_t(sums[i] + row_terms[i] + column_term); };
    const double alpha = e.alpha, beta = e.beta;
    if (e.as_it_is)
        for (index_t i = 0; i < n; ++i)
            c[i] = whole(i);
    else if (beta == 0)
        for (index_t i = 0; i < n; ++i)
            c[i] = to_integer(alpha * whole(i) + (offsets[i] + offset));
    else
        for (index_t i = 0; i < n; ++i)
            c[i] = to_integer(alpha * whole(i) + (beta * c[i] + (offsets[i] + offset)));
}

// Blocks, in elements, and where they are.
struct integer_blocks {
    index_t mb, nb, kb;
    uint32_t *a = nullptr, *b = nullptr, *sums = nullptr;
    uint32_t *row_terms = nullptr, *column_terms = nullptr;

    // In bytes, each of these a multiple of a cache line.
    static index_t line(index_t n) { return rounded_up(4 * n, 64); }
    index_t bytes(bool keeps_sums) const {
        return line(mb * (kb / 2)) + line(nb * (kb / 2)) + line(keeps_sums ? mb * nb : mr * nr) +
               line(mb) + line(nb);
    }
    void put(char *at, bool keeps_sums) {
        const auto take = [&](index_t n) {
            uint32_t *const place = reinterpret_cast<uint32_t *>(at);
            at += line(n);
            return place;
        };
        a = take(mb * (kb / 2)), b = take(nb * (kb / 2));
        sums = take(keeps_sums ? mb * nb : mr * nr);
        row_terms = take(mb), column_terms = take(nb);
    }
};

struct integer_block {
    index_t i0, i1, j0, j1, pairs;
    bool first, last; // in depth
};

// What is packed, multiplied; with the last block of the depth it becomes C.
void multiply_block(const integer_product &job, const ending &e, const integer_blocks &space,
                    const integer_block &at, bool keeps_sums) {
    const uint32_t ao = uint32_t(job.a.offset), bo = uint32_t(job.b.offset);
    const uint32_t corner = ao * bo * uint32_t(job.k);
    uint32_t *tile = space.sums;
    for (index_t i = at.i0; i < at.i1; i += mr) {
        const index_t rows = least(mr, at.i1 - i);
        uint32_t row_terms[mr];
        double offsets[mr];
        for (index_t r = 0; at.last && r < mr; ++r) {
            row_terms[r] = bo ? bo * space.row_terms[i - at.i0 + r] : 0;
            offsets[r] = job.offset == integer_product::fixed    ? *job.co
                         : job.offset == integer_product::column ? r < rows ? job.co[i + r] : 0
                                                                 : 0;
        }
        for (index_t j = at.j0; j < at.j1; j += nr, tile += keeps_sums ? mr * nr : 0) {
            const index_t columns = least(nr, at.j1 - j);
            multiply_pair_strips(at.pairs, space.a + (i - at.i0) * at.pairs,
                                 space.b + (j - at.j0) * at.pairs, !at.first, tile);
            for (index_t s = 0; at.last && s < columns; ++s)
                finish_column(rows, e, tile + s * mr, row_terms,
                              ao ? ao * space.column_terms[j - at.j0 + s] + corner : corner,
                              offsets, job.offset == integer_product::row ? job.co[j + s] : 0,
                              job.c + i + (j + s) * job.ldc);
        }
    }
}

void multiply_in_blocks(const integer_product &job, const integer_blocks &space) {
    const integer_factor b = {job.b.data, job.b.ld, !job.b.transposed, job.b.type, job.b.offset};
    const bool keeps_sums = job.k > space.kb;
    const ending e = {job.alpha, job.beta,
                      job.alpha == 1 && job.beta == 0 && job.offset == integer_product::fixed &&
                          *job.co == 0};
    integer_block at;
    for (at.i0 = 0; at.i0 < job.m; at.i0 = at.i1) {
        at.i1 = least(job.m, at.i0 + space.mb);
        for (at.j0 = 0; at.j0 < job.n; at.j0 = at.j1) {
            at.j1 = least(job.n, at.j0 + space.nb);
            index_t p = 0;
            do {
                const index_t end = least(job.k, p + space.kb);
                at.pairs = (end - p + 1) / 2;
                at.first = p == 0, at.last = end == job.k;
                if (keeps_sums || at.j0 == 0) {
                    pack_integers<mr>(job.a, at.i0, at.i1, p, end, at.pairs * mr, space.a);
                    if (job.b.offset && at.j0 == 0)
                        sum_rows<mr>(space.a, (at.i1 - at.i0 + mr - 1) / mr, at.pairs, !at.first,
                                     space.row_terms);
                }
                pack_integers<nr>(b, at.j0, at.j1, p, end, at.pairs * nr, space.b);
                if (job.a.offset)
                    sum_rows<nr>(space.b, (at.j1 - at.j0 + nr - 1) / nr, at.pairs, !at.first,
                                 space.column_terms);
                multiply_block(job, e, space, at, keeps_sums);
                p = end;
            } while (p < job.k);
        }
    }
}

// Blocks of A pass in the first-level cache, those of B stay in the second.
constexpr index_t whole_depth = 768, usual_depth = 512, most_rows = 960, most_columns = 480;
constexpr index_t stack_bytes = 20 * 1024, stack_depth = 128;

void multiply_integers(integer_product job) {
    if (job.m <= 0 || job.n <= 0)
        return;
    if (job.k <= 0 || job.alpha == 0)
        job.k = 0, job.a.offset = job.b.offset = 0, job.alpha = 0;
    integer_blocks blocks = {rounded_up(least(job.m, most_rows), mr),
                             rounded_up(least(job.n, most_columns), nr),
                             job.k <= whole_depth ? rounded_up(job.k, 2) : usual_depth};
    bool keeps_sums = job.k > blocks.kb;
    if (blocks.bytes(keeps_sums) > stack_bytes) {
        const vox::scratch<char> memory(blocks.bytes(keeps_sums), 128);
        if (!memory.empty()) {
            blocks.put(memory.data(), keeps_sums);
            return multiply_in_blocks(job, blocks);
        }
        blocks.mb = mr, blocks.nb = nr, blocks.kb = least(blocks.kb, stack_depth);
        keeps_sums = job.k > blocks.kb;
    }
    alignas(64) char memory[stack_bytes];
    blocks.put(memory, keeps_sums);
    multiply_in_blocks(job, blocks);
}

} // namespace

extern "C" void VOX_KERNEL(blas, gemm_integer)(const vox::integer_product *job) {
    multiply_integers(*job);
}
