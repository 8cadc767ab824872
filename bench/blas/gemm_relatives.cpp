// gemm_relatives.cpp - what no peer has, beside ?gemm: products of factors that are packed already, of
// integers, and in batches, beside a loop of the caller's.
//
//   bench_gemm_relatives [--threads N] [sizes...]
//
// Square products, operands warm. Prints ?gemm's rate, and how often the others are done in its time;
// "pack" is what packing a factor takes of it. Threads: as the environment says, or N.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/peers/peers.hpp"
#include "vox/vox.h"

namespace {

constexpr peers::effort effort = {0.2, 0.8};

// Times of calls that are compared, the first one's for the rate.
template <class... Call>
std::vector<double> times_of(const Call &...calls) {
    return peers::best_times(sizeof...(calls), effort, [&](size_t which) {
        size_t at = 0;
        ((at++ == which ? calls() : void()), ...);
    });
}

void print(const char *name, vox_int n, const std::vector<double> &times,
           std::initializer_list<const char *> what, int products = 1) {
    std::printf("%-8s n = %-5d %7.1f Gop/s", name, n, 2e-9 * n * n * n * products / times[0]);
    for (size_t i = 1; i < times.size(); ++i)
        std::printf("   %s %.2f", what.begin()[i - 1],
                    std::strcmp(what.begin()[i - 1], "pack") == 0 ? times[i] / times[0]
                                                                  : times[0] / times[i]);
    std::printf("\n");
    std::fflush(stdout);
}

template <class T, class Alloc, class Pack, class Compute, class Free>
void packed(const char *name, Alloc alloc, Pack pack, Compute compute, Free release, vox_int n) {
    const size_t elements = size_t(n) * size_t(n);
    const std::vector<T> a(elements, T(1)), b(elements, T(1));
    std::vector<T> c(elements);
    const T one = 1, zero = 0;
    T *const pa = alloc("A", &n, &n, &n), *const pb = alloc("B", &n, &n, &n);
    const auto packing = [&](const char *identifier, const T *from, T *to) {
        pack(identifier, "N", &n, &n, &n, &one, from, &n, to);
    };
    const auto multiply = [&](const char *ta, const T *x, const char *tb, const T *y) {
        compute(ta, tb, &n, &n, &n, x, &n, y, &n, &zero, c.data(), &n);
    };
    packing("A", a.data(), pa);
    packing("B", b.data(), pb);
    print(name, n,
          times_of([&] { multiply("N", a.data(), "N", b.data()); },
                   [&] { multiply("P", pa, "N", b.data()); },
                   [&] { multiply("N", a.data(), "P", pb); }, [&] { multiply("P", pa, "P", pb); },
                   [&] { packing("A", a.data(), pa); }),
          {"A packed", "B packed", "both", "pack"});
    release(pa);
    release(pb);
}

void integers(vox_int n) {
    const size_t elements = size_t(n) * size_t(n);
    const std::vector<float> a(elements, 1.f), b(elements, 1.f);
    const std::vector<int16_t> a16(elements, 300), b16(elements, -2);
    const std::vector<int8_t> a8(elements, -100);
    const std::vector<uint8_t> b8(elements, 200);
    std::vector<float> c(elements);
    std::vector<int32_t> sums(elements);
    const float one = 1, zero = 0, half = 0.5f;
    const int32_t none = 0;
    const int16_t o16 = 0;
    const int8_t o8 = 0, some8 = 3;
    const uint8_t u8 = 0, some_u8 = 7;
    print("sgemm", n,
          times_of(
              [&] {
                  sgemm("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, c.data(),
                        &n);
              },
              [&] {
                  gemm_s16s16s32("N", "N", "F", &n, &n, &n, &one, a16.data(), &n, &o16, b16.data(),
                                 &n, &o16, &zero, sums.data(), &n, &none);
              },
              [&] {
                  gemm_s8u8s32("N", "N", "F", &n, &n, &n, &one, a8.data(), &n, &o8, b8.data(), &n,
                               &u8, &zero, sums.data(), &n, &none);
              },
              [&] {
                  gemm_s8u8s32("N", "N", "F", &n, &n, &n, &half, a8.data(), &n, &some8, b8.data(),
                               &n, &some_u8, &one, sums.data(), &n, &none);
              }),
          {"s16s16s32", "s8u8s32", "with offsets and scales"});
}

// Products of the cache's size at most: larger ones are a loop in either case.
void batches(vox_int n) {
    constexpr vox_int products = 64, groups = 1;
    const size_t elements = size_t(n) * size_t(n);
    const std::vector<double> a(elements * products, 1), b(elements * products, 1);
    std::vector<double> c(elements * products);
    const double *all_a[products], *all_b[products];
    double *all_c[products];
    for (size_t i = 0; i < products; ++i) {
        all_a[i] = &a[i * elements];
        all_b[i] = &b[i * elements];
        all_c[i] = &c[i * elements];
    }
    const double one = 1, zero = 0;
    print("64 dgemm", n,
          times_of(
              [&] {
                  for (size_t i = 0; i < products; ++i)
                      dgemm("N", "N", &n, &n, &n, &one, all_a[i], &n, all_b[i], &n, &zero, all_c[i],
                            &n);
              },
              [&] {
                  dgemm_batch("N", "N", &n, &n, &n, &one, all_a, &n, all_b, &n, &zero, all_c, &n,
                              &groups, &products);
              }),
          {"one batch"}, products);
}

} // namespace

int main(int count, char **arguments) {
    std::vector<vox_int> sizes;
    for (int i = 1; i < count; ++i)
        if (std::strcmp(arguments[i], "--threads") == 0 && i + 1 < count)
            vox_set_num_threads(std::atoi(arguments[++i]));
        else
            sizes.push_back(std::atoi(arguments[i]));
    if (sizes.empty())
        sizes = {16, 32, 64, 100, 200, 500, 1000, 2000};
    for (const vox_int n : sizes)
        packed<float>("sgemm", sgemm_alloc, sgemm_pack, sgemm_compute, sgemm_free, n);
    for (const vox_int n : sizes)
        packed<double>("dgemm", dgemm_alloc, dgemm_pack, dgemm_compute, dgemm_free, n);
    for (const vox_int n : sizes)
        integers(n);
    for (const vox_int n : {1, 2, 4, 8, 16, 32, 64, 100, 200})
        batches(n);
}
