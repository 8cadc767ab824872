// level1_calls.cpp - level 1, sparse vectors included.
#include <numeric>

#include "tests/blas/level1.hpp"
#include "tests/process/routine_calls.hpp"

namespace {

using namespace test;

template <class T>
void add(routine_calls &all, call_size size) {
    using R = real_of<T>;
    constexpr form c = form::c;
    const vox_int n = size == call_size::small ? 9 : vox_int(640 * 1024 / sizeof(T));
    std::vector<vox_int> backwards(static_cast<size_t>(n));
    std::iota(backwards.rbegin(), backwards.rend(), 0);
    const T a = vox::make<T>(R(0.75), R(-0.5));
    const auto row = [&](const char *name, auto body) {
        all.push_back({letter_of<T> + std::string(name),
                       {numbers_operand<T>(size_t(n), 1), numbers_operand<T>(size_t(n), 2),
                        plain_operand(backwards), numbers_operand<T>(1, 3)},
                       [=](char *const *at) {
                           body(as<T>(at[0]), as<T>(at[1]), as<vox_int>(at[2]), as<T>(at[3]));
                       }});
    };
    row("copy", [=](T *x, T *y, vox_int *, T *) { copy(c, n, x, 1, y, 1); });
    row("swap", [=](T *x, T *y, vox_int *, T *) { test::swap(c, n, x, 1, y, -1); });
    row("scal", [=](T *x, T *, vox_int *, T *) { scal(c, n, a, x, 1); });
    row("axpy", [=](T *x, T *y, vox_int *, T *) { axpy(c, n, a, x, 1, y, 1); });
    row("axpby", [=](T *x, T *y, vox_int *, T *) { axpby(c, n, a, x, 1, a, y, 1); });
    row("rot", [=](T *x, T *y, vox_int *, T *) { rot(c, n, x, 1, y, 1, R(0.6), R(0.8)); });
    row("dot", [=](T *x, T *y, vox_int *, T *r) { *r = dot(c, n, x, 1, y, 1); });
    row("dotc", [=](T *x, T *y, vox_int *, T *r) { *r = dotc(c, n, x, 1, y, -1); });
    row("asum", [=](T *x, T *, vox_int *, T *r) { *r = vox::make<T>(asum(c, n, x, 1)); });
    row("nrm2", [=](T *x, T *, vox_int *, T *r) { *r = vox::make<T>(nrm2(c, n, x, 1)); });
    row("amax", [=](T *x, T *, vox_int *i, T *) { *i = vox_int(iamax(c, n, x, 1)); });
    row("amin", [=](T *x, T *, vox_int *i, T *) { *i = vox_int(iamin(c, n, x, 1)); });
    row("axpyi", [=](T *x, T *y, vox_int *i, T *) { axpyi(c, n, a, x, i, y); });
    row("gthr", [=](T *x, T *y, vox_int *i, T *) { gthr(c, n, y, x, i); });
    row("gthrz", [=](T *x, T *y, vox_int *i, T *) { gthrz(c, n, y, x, i); });
    row("sctr", [=](T *x, T *y, vox_int *i, T *) { sctr(c, n, x, i, y); });
    if constexpr (is_complex<T>) {
        row("dotui", [=](T *x, T *y, vox_int *i, T *r) { *r = doti(c, n, x, i, y); });
        row("dotci", [=](T *x, T *y, vox_int *i, T *r) { *r = dotci(c, n, x, i, y); });
    } else {
        row("doti", [=](T *x, T *y, vox_int *i, T *r) { *r = doti(c, n, x, i, y); });
        row("roti", [=](T *x, T *y, vox_int *i, T *) { roti(c, n, x, i, y, R(0.6), R(0.8)); });
        row("rotm", [=](T *x, T *y, vox_int *, T *) {
            const T h[5] = {-1, R(0.9), R(0.1), R(-0.2), R(1.1)};
            rotm(c, n, x, 1, y, 1, h);
        });
    }
}

} // namespace

void test::add_level1_calls(routine_calls &all, call_size size) {
    for_each_type([&](auto zero) { add<decltype(zero)>(all, size); });
}
