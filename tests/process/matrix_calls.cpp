// matrix_calls.cpp - levels 2 and 3, batches of products, packed factors and integer products.
#include <cmath>

#include "tests/blas/routine_tables.hpp"
#include "tests/process/routine_calls.hpp"

namespace {

using namespace test;

// Letters and increments of one kind, or of another.
template <class T>
arguments<T> given(const routine<T> &r, vox_int n, bool other, vox_int inc) {
    arguments<T> a;
    a.side = other ? 'R' : 'L';
    a.uplo = other ? 'L' : 'U';
    a.trans = !other ? 'N' : r.hermitian() ? 'C' : 'T';
    a.transb = other ? 'N' : 'T';
    a.diag = r.solves() ? 'U' : 'N';
    a.m = a.n = a.k = n;
    if (r.has('k'))
        a.ku = n / 2;
    if (r.has('l'))
        a.kl = n / 2;
    a.incx = inc;
    a.incy = -inc;
    a.lda = (r.has('M') || r.has('N') ? r.least_ld('L', a) : std::max(1, r.least_lda(a))) + 1;
    a.ldb = a.ldc = n + 1;
    a.alpha = vox::make<T>(vox::real_of<T>(0.5), vox::real_of<T>(0.25));
    a.beta = vox::make<T>(vox::real_of<T>(-0.5), vox::real_of<T>(0.125));
    return a;
}

// Off the diagonal, which is implied, triangles have rows of less than one in all: solutions keep
// their size.
template <class T>
void add_routine(routine_calls &all, const routine<T> &r, vox_int n) {
    for (bool other : {false, true}) {
        const vox_int inc = other ? 2 : 1;
        const arguments<T> a = given(r, n, other, inc);
        const bool level3 = r.has('M') || r.has('N');
        const size_t cells = size_t(std::max(a.lda, n)) * size_t(n);
        const size_t others = level3 ? size_t(n + 1) * size_t(n) : size_t(n) * size_t(inc);
        const auto make = [r, a](char *const *at) {
            arguments<T> now = a;
            now.a = as<T>(at[0]), now.x = as<T>(at[1]), now.y = as<T>(at[2]);
            r.fortran(now);
        };
        all.push_back({r.name + (other ? "'" : ""),
                       {numbers_operand<T>(cells, 1, 1.0 / n), numbers_operand<T>(others, 2),
                        numbers_operand<T>(others, 3)},
                       make});
    }
}

template <class T, class F>
void add_batch(routine_calls &all, const char *name, F *batch, vox_int n) {
    constexpr vox_int products = 5, groups = 1;
    const size_t cells = size_t(n) * size_t(n);
    const auto make = [=](char *const *at) {
        const T *a[products], *b[products];
        T *c[products];
        for (size_t p = 0; p < products; ++p) {
            a[p] = as<T>(at[0]) + p * cells;
            b[p] = as<T>(at[1]) + p * cells;
            c[p] = as<T>(at[2]) + p * cells;
        }
        const T one = vox::one<T>;
        batch("N", "T", &n, &n, &n, &one, a, &n, b, &n, &one, c, &n, &groups, &products);
    };
    all.push_back({name, numbers_operands<T>(3, cells * products), make});
}

template <class T, class Alloc, class Pack, class Compute, class Free>
void add_packed(routine_calls &all, const char *name, vox_int n, Alloc *alloc, Pack *pack,
                Compute *compute, Free *release) {
    const size_t cells = size_t(n) * size_t(n);
    std::vector<operand_bytes> operands = numbers_operands<T>(3, cells);
    operands.push_back(plain_operand(std::vector<vox_int>(1)));
    const auto make = [=](char *const *at) {
        T *const packed = alloc("A", &n, &n, &n);
        if (!packed) {
            *as<vox_int>(at[3]) = -1;
            return;
        }
        const T one = 1;
        pack("A", "T", &n, &n, &n, &one, as<T>(at[0]), &n, packed);
        compute("P", "N", &n, &n, &n, packed, &n, as<T>(at[1]), &n, &one, as<T>(at[2]), &n);
        release(packed);
    };
    all.push_back({name, operands, make, 1, 3});
}

template <class A, class B, class F>
void add_integer(routine_calls &all, const char *name, F *gemm, vox_int n) {
    const size_t cells = size_t(n) * size_t(n);
    lottery lots(1);
    std::vector<A> a(cells);
    std::vector<B> b(cells);
    for (size_t i = 0; i < cells; ++i)
        a[i] = A(lots.number() % 100), b[i] = B(lots.number() % 100);
    const auto make = [=](char *const *at) {
        const float one = 1;
        const A ao = 1;
        const B bo = 2;
        const int32_t co = 3;
        gemm("N", "T", "F", &n, &n, &n, &one, as<A>(at[0]), &n, &ao, as<B>(at[1]), &n, &bo, &one,
             as<int32_t>(at[2]), &n, &co);
    };
    all.push_back(
        {name,
         {plain_operand(a), plain_operand(b), plain_operand(std::vector<int32_t>(cells, 5))},
         make});
}

template <class T>
void add(routine_calls &all, call_size size) {
    const bool small = size == call_size::small;
    const vox_int order = vox_int(small ? 5 : std::sqrt(1.7e6 / sizeof(T)));
    for (const routine<T> &r : routines<T>())
        add_routine(all, r, order);
    for (const routine<T> &r : level3_routines<T>())
        add_routine(all, r, small ? 5 : 150);
}

} // namespace

void test::add_matrix_calls(routine_calls &all, call_size size) {
    for_each_type([&](auto zero) { add<decltype(zero)>(all, size); });
    const vox_int n = size == call_size::small ? 5 : 131;
    add_batch<float>(all, "sgemm_batch", sgemm_batch_, n);
    add_batch<double>(all, "dgemm_batch", dgemm_batch_, n);
    add_batch<vox_complex_float>(all, "cgemm_batch", cgemm_batch_, n);
    add_batch<vox_complex_double>(all, "zgemm_batch", zgemm_batch_, n);
    add_batch<vox_complex_float>(all, "cgemm3m_batch", cgemm3m_batch_, n);
    add_batch<vox_complex_double>(all, "zgemm3m_batch", zgemm3m_batch_, n);
    add_packed<float>(all, "sgemm_pack", n, sgemm_alloc_, sgemm_pack_, sgemm_compute_, sgemm_free_);
    add_packed<double>(all, "dgemm_pack", n, dgemm_alloc_, dgemm_pack_, dgemm_compute_,
                       dgemm_free_);
    add_integer<int8_t, uint8_t>(all, "gemm_s8u8s32", gemm_s8u8s32_, n);
    add_integer<int16_t, int16_t>(all, "gemm_s16s16s32", gemm_s16s16s32_, n);
}
