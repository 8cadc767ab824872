// trans_calls.cpp - copies and sums of matrices, transposed or not.
#include <gtest/gtest.h>

#include "tests/process/routine_calls.hpp"
#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

template <class T>
void add(routine_calls &all, call_size size) {
    constexpr form c = form::c;
    const bool small = size == call_size::small;
    const int64_t rows = small ? 5 : 211, cols = small ? 7 : 307;
    const size_t cells = size_t(rows * cols);
    const T a = number<T>(0.75, -0.5);
    const auto row = [&](const char *name, auto body) {
        all.push_back({letter_of<T> + std::string(name), numbers_operands<T>(3, 2 * cells),
                       [=](char *const *at) { body(as<T>(at[0]), as<T>(at[1]), as<T>(at[2])); }});
    };
    const copy_call<T> transposed{'R', 'T', rows, cols, a, cols, 1, rows, 1};
    const copy_call<T> plain{'R', 'N', rows, cols, a, cols, 1, cols + 2, 1};
    const copy_call<T> square{'C', 'T', rows, rows, a, rows, 1, rows, 1};
    const copy_call<T> strided{'R', 'T', rows, cols, a, 2 * cols, 2, rows, 1};
    row("omatcopy", [=](T *x, T *y, T *) { omatcopy(c, transposed, x, y); });
    row("omatcopy'", [=](T *x, T *y, T *) { omatcopy(c, plain, x, y); });
    row("omatcopy2", [=](T *x, T *y, T *) { omatcopy(c, strided, x, y); });
    row("imatcopy", [=](T *x, T *, T *) { imatcopy(c, transposed, x); });
    row("imatcopy'", [=](T *x, T *, T *) { imatcopy(c, square, x); });
    row("imatcopy''", [=](T *x, T *, T *) { imatcopy(c, plain, x); });
    row("omatadd", [=](T *x, T *y, T *z) {
        omatadd(c, 'R', 'N', 'T', rows, cols, a, x, cols, a, y, rows, z, cols);
    });
}

} // namespace

void test::add_trans_calls(routine_calls &all, call_size size) {
    for_each_type([&](auto zero) { add<decltype(zero)>(all, size); });
}
