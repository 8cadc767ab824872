// lapacke_table.hpp - the C forms of LAPACK as rows of a table, and operands that each can work on.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/element_types.hpp"
#include "tests/support/numbers.hpp"
#include "vox/lapacke.h"

namespace test::lapacke {

using vox::is_complex;
using vox::make;
using vox::real_of;

// A matrix of a call, by columns in `values`; what the call gets lies in `memory`, by rows or columns.
template <class T>
struct operand {
    int position; // its parameter number in the C form
    vox_int rows, cols;
    bool checked = true; // for NaN
    std::vector<T> values, memory;
    T *elsewhere = nullptr; // where the call finds it, if not in `memory`
    vox_int ld = 0;

    operand(int number, vox_int m, vox_int n, bool nan_checked = true)
        : position(number), rows(m), cols(n), checked(nan_checked), values(size_t(m) * n) {}
    T *data() { return elsewhere ? elsewhere : memory.data(); }
    size_t place(int layout, vox_int i, vox_int j) const {
        return layout == LAPACK_ROW_MAJOR ? size_t(i) * ld + j : i + size_t(j) * ld;
    }
    void lay_out(int layout) {
        ld = layout == LAPACK_ROW_MAJOR ? cols + 2 : rows;
        memory.assign(size_t(ld) * (layout == LAPACK_ROW_MAJOR ? rows : cols), make<T>(-77));
        for (vox_int j = 0; j < cols; ++j)
            for (vox_int i = 0; i < rows; ++i)
                memory[place(layout, i, j)] = values[i + size_t(j) * rows];
    }
    std::vector<T> result(int layout) const {
        std::vector<T> all;
        for (vox_int j = 0; j < cols; ++j)
            for (vox_int i = 0; i < rows; ++i)
                all.push_back(memory[place(layout, i, j)]);
        return all;
    }
};

struct sizes {
    vox_int n = 19, nrhs = 3, tall = 23;
};

// What a routine is called with; scalars holds results and vectors besides the matrices.
template <class T>
struct arguments {
    sizes size;
    std::vector<operand<T>> m;
    std::vector<vox_int> pivots = std::vector<vox_int>(size_t(size.tall), 0);
    // reflectors' factors, such that their products keep their size
    std::vector<T> vector = std::vector<T>(size_t(size.tall), make<T>(1 / real_of<T>(size.tall)));
    real_of<T> number = 0;
};

template <class T>
struct routine {
    sizes size;
    std::string name, c_name; // without the letter of the precision, and as C has it
    int requests;             // for workspace, before the copies of a row-major call
    std::vector<operand<T>> matrices;
    std::function<vox_int(int layout, arguments<T> &x)> call;
};

// In a row: a matrix and its leading dimension.
struct matrix {
    vox_int rows, cols;
    bool checked = true;
    size_t index = 0; // among the routine's
};

// The argument or two that a call gets for a parameter: members of its arguments are given as such.
template <class T, class P>
auto passed(const P &parameter, arguments<T> &a) {
    if constexpr (std::is_same_v<P, matrix>)
        return std::tuple(a.m[parameter.index].data(), a.m[parameter.index].ld);
    else if constexpr (std::is_same_v<P, real_of<T> arguments<T>::*>)
        return std::tuple(&(a.*parameter));
    else if constexpr (std::is_member_pointer_v<P>)
        return std::tuple((a.*parameter).data());
    else
        return std::tuple(parameter);
}

// A routine by its C form, the number of its requests and its arguments. A norm is one of the results.
template <class T, class R, class... F, class... P>
routine<T> row(const sizes &s, const char *name, const char *c_name, R (*form)(int, F...),
               int requests, P... parameters) {
    std::vector<operand<T>> matrices;
    int number = 1; // of the parameter; the layout is the first
    const auto enter = [&](auto &p) {
        ++number;
        if constexpr (std::is_same_v<decltype(p), matrix &>) {
            p.index = matrices.size();
            matrices.emplace_back(number++, p.rows, p.cols, p.checked);
        }
    };
    (enter(parameters), ...);
    const auto call = [=](int layout, arguments<T> &a) {
        const R result =
            std::apply(form, std::tuple_cat(std::tuple(layout), passed(parameters, a)...));
        if constexpr (std::is_floating_point_v<R>)
            a.number = result;
        return result < 0 || std::is_integral_v<R> ? vox_int(result) : 0;
    };
    return {s, name, c_name, requests, matrices, call};
}

// clang-format off
#define ROW(p, name, ...) row<T>(s, #name, "LAPACKE_" #p #name, LAPACKE_##p##name, __VA_ARGS__)
#define ROUTINES(p, q)                                                                             \
    ROW(p, getrf, 0, s.tall, s.n, tall, pivots),                                                   \
    ROW(p, getrs, 0, 'T', s.n, s.nrhs, square, pivots, sides),                                     \
    ROW(p, gesv, 0, s.n, s.nrhs, square, pivots, sides),                                           \
    ROW(p, getri, 1, s.n, square, pivots),                                                         \
    ROW(p, gecon, 2, '1', s.n, square, 30, number),                                                \
    ROW(p, laswp, 0, s.n, square, 1, std::min(5, s.n), pivots, 1),                                 \
    ROW(p, potrf, 0, 'U', s.n, square),                                                            \
    ROW(p, potrs, 0, 'U', s.n, s.nrhs, square, sides),                                             \
    ROW(p, posv, 0, 'U', s.n, s.nrhs, square, sides),                                              \
    ROW(p, potri, 0, 'U', s.n, square),                                                            \
    ROW(p, pocon, 2, 'U', s.n, square, 30, number),                                                \
    ROW(p, lauum, 0, 'U', s.n, square),                                                            \
    ROW(p, trtri, 0, 'U', 'N', s.n, square),                                                       \
    ROW(p, trtrs, 0, 'U', 'N', 'N', s.n, s.nrhs, square, sides),                                   \
    ROW(p, trcon, 2, 'I', 'U', 'N', s.n, square, number),                                          \
    ROW(p, geqrf, 1, s.tall, s.n, tall, vector),                                                   \
    ROW(p, gelqf, 1, s.tall, s.n, tall, vector),                                                   \
    ROW(p, geqp3, is_complex<T> ? 2 : 1, s.tall, s.n, tall, pivots, vector),                       \
    ROW(p, q##gqr, 1, s.tall, s.n, s.n, tall, vector),                                             \
    ROW(p, q##glq, 1, s.n, s.tall, s.n, flat, vector),                                             \
    ROW(p, q##mqr, 1, 'L', adjoint, s.tall, s.nrhs, s.n, tall, vector, tall_sides),                \
    ROW(p, q##mlq, 1, 'R', adjoint, s.nrhs, s.tall, s.n, flat, vector, flat_sides),                \
    ROW(p, gels, 1, 'N', s.tall, s.n, s.nrhs, tall, tall_sides),                                   \
    ROW(p, larft, 0, 'F', 'C', s.tall, s.n, tall, vector, unread(square)),                         \
    ROW(p, larfb, 1, 'L', 'N', 'F', 'C', s.tall, s.nrhs, s.n, tall, square, tall_sides),           \
    ROW(p, lange, 1, 'I', s.tall, s.n, tall),                                                      \
    ROW(p, lansy, 1, 'I', 'U', s.n, square),                                                       \
    ROW(p, lantr, 1, 'I', 'U', 'N', s.tall, s.n, tall),                                            \
    ROW(p, lacpy, 0, 'U', s.tall, s.n, tall, unread(tall)),                                        \
    ROW(p, laset, 0, 'L', s.tall, s.n, make<T>(2), make<T>(3), unread(tall)),                      \
    ROW(p, lascl, 0, 'G', 0, 0, 3, 2, s.tall, s.n, tall)
// clang-format on

// getrf's factors and such are only data here: any well-scaled matrix with a heavy diagonal will do.
template <class T>
std::vector<routine<T>> routines(const sizes &s = {}) {
    const matrix square{s.n, s.n}, tall{s.tall, s.n}, flat{s.n, s.tall}, sides{s.n, s.nrhs},
        tall_sides{s.tall, s.nrhs}, flat_sides{s.nrhs, s.tall};
    const auto unread = [](const matrix &m) { return matrix{m.rows, m.cols, false}; };
    constexpr auto pivots = &arguments<T>::pivots;
    constexpr auto vector = &arguments<T>::vector;
    constexpr auto number = &arguments<T>::number;
    constexpr char adjoint = is_complex<T> ? 'C' : 'T';
    if constexpr (std::is_same_v<T, float>)
        return {ROUTINES(s, or)};
    else if constexpr (std::is_same_v<T, double>)
        return {ROUTINES(d, or)};
    else if constexpr (std::is_same_v<T, vox_complex_float>)
        return {ROUTINES(c, un)};
    else
        return {ROUTINES(z, un)};
}
#undef ROUTINES
#undef ROW

// Operands that every routine can work on: symmetric where square, with a heavy diagonal.
template <class T>
arguments<T> fill(const routine<T> &r, int layout) {
    arguments<T> a{r.size, r.matrices};
    for (vox_int i = 0; i < r.size.n && r.name != "geqp3"; ++i) // there they are columns
        a.pivots[size_t(i)] = i + 1 + (r.size.n - 1 - i) / 2;
    unsigned seed = 1;
    for (operand<T> &m : a.m) {
        const auto parts = test::random_vector<real_of<T>>(2 * m.values.size(), ++seed);
        for (vox_int j = 0; j < m.cols; ++j)
            for (vox_int i = 0; i < m.rows; ++i) {
                const size_t k = std::min(i, j) + size_t(std::max(i, j)) * m.rows;
                const size_t from = m.rows == m.cols ? k : i + size_t(j) * m.rows;
                m.values[i + size_t(j) * m.rows] =
                    i == j ? make<T>(real_of<T>(r.size.tall + 2) + parts[2 * from])
                           : make<T>(parts[2 * from], (i < j ? 1 : -1) * parts[2 * from + 1]);
            }
        m.lay_out(layout);
    }
    return a;
}

} // namespace test::lapacke
