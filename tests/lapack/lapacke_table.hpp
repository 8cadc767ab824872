// lapacke_table.hpp - the C forms of LAPACK as rows of a table, and operands that each can work on.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/numbers.hpp"
#include "vox/lapacke.h"

namespace test::lapacke {

using vox::is_complex;
using vox::make;
using vox::real_of;

template <class T>
struct forms;
#define FORMS(p, Q, E)                                                                             \
    template <>                                                                                    \
    struct forms<E> {                                                                              \
        static constexpr const char *prefix = "LAPACKE_" #p;                                       \
        static constexpr auto getrf = LAPACKE_##p##getrf;                                          \
        static constexpr auto getrs = LAPACKE_##p##getrs;                                          \
        static constexpr auto gesv = LAPACKE_##p##gesv;                                            \
        static constexpr auto getri = LAPACKE_##p##getri;                                          \
        static constexpr auto gecon = LAPACKE_##p##gecon;                                          \
        static constexpr auto laswp = LAPACKE_##p##laswp;                                          \
        static constexpr auto potrf = LAPACKE_##p##potrf;                                          \
        static constexpr auto potrs = LAPACKE_##p##potrs;                                          \
        static constexpr auto posv = LAPACKE_##p##posv;                                            \
        static constexpr auto potri = LAPACKE_##p##potri;                                          \
        static constexpr auto pocon = LAPACKE_##p##pocon;                                          \
        static constexpr auto lauum = LAPACKE_##p##lauum;                                          \
        static constexpr auto trtri = LAPACKE_##p##trtri;                                          \
        static constexpr auto trtrs = LAPACKE_##p##trtrs;                                          \
        static constexpr auto trcon = LAPACKE_##p##trcon;                                          \
        static constexpr auto geqrf = LAPACKE_##p##geqrf;                                          \
        static constexpr auto gelqf = LAPACKE_##p##gelqf;                                          \
        static constexpr auto geqp3 = LAPACKE_##p##geqp3;                                          \
        static constexpr auto orgqr = LAPACKE_##Q##gqr;                                            \
        static constexpr auto orglq = LAPACKE_##Q##glq;                                            \
        static constexpr auto ormqr = LAPACKE_##Q##mqr;                                            \
        static constexpr auto ormlq = LAPACKE_##Q##mlq;                                            \
        static constexpr auto gels = LAPACKE_##p##gels;                                            \
        static constexpr auto larft = LAPACKE_##p##larft;                                          \
        static constexpr auto larfb = LAPACKE_##p##larfb;                                          \
        static constexpr auto lange = LAPACKE_##p##lange;                                          \
        static constexpr auto lansy = LAPACKE_##p##lansy;                                          \
        static constexpr auto lantr = LAPACKE_##p##lantr;                                          \
        static constexpr auto lacpy = LAPACKE_##p##lacpy;                                          \
        static constexpr auto laset = LAPACKE_##p##laset;                                          \
        static constexpr auto lascl = LAPACKE_##p##lascl;                                          \
    };
FORMS(s, sor, float)
FORMS(d, dor, double)
FORMS(c, cun, vox_complex_float)
FORMS(z, zun, vox_complex_double)

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
    std::string name;
    std::vector<operand<T>> matrices;
    vox_int (*call)(int layout, arguments<T> &x);
    int requests = 0; // for workspace, before the copies of a row-major call
};

// getrf's factors and such are only data here: any well-scaled matrix with a heavy diagonal will do.
template <class T>
std::vector<routine<T>> routines(const sizes &s = {}) {
    using f = forms<T>;
    using x = arguments<T>;
    static constexpr char adjoint = is_complex<T> ? 'C' : 'T';
    return {
        {s,
         "getrf",
         {{4, s.tall, s.n}},
         [](int l, x &a) {
             return f::getrf(l, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld, a.pivots.data());
         }},
        {s,
         "getrs",
         {{5, s.n, s.n}, {8, s.n, s.nrhs}},
         [](int l, x &a) {
             return f::getrs(l, 'T', a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld,
                             a.pivots.data(), a.m[1].data(), a.m[1].ld);
         }},
        {s,
         "gesv",
         {{4, s.n, s.n}, {7, s.n, s.nrhs}},
         [](int l, x &a) {
             return f::gesv(l, a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld, a.pivots.data(),
                            a.m[1].data(), a.m[1].ld);
         }},
        {s,
         "getri",
         {{3, s.n, s.n}},
         [](int l, x &a) {
             return f::getri(l, a.size.n, a.m[0].data(), a.m[0].ld, a.pivots.data());
         },
         1},
        {s,
         "gecon",
         {{4, s.n, s.n}},
         [](int l, x &a) {
             return f::gecon(l, '1', a.size.n, a.m[0].data(), a.m[0].ld, 30, &a.number);
         },
         2},
        {s,
         "laswp",
         {{3, s.n, s.n, true}},
         [](int l, x &a) {
             return f::laswp(l, a.size.n, a.m[0].data(), a.m[0].ld, 1, std::min(5, a.size.n),
                             a.pivots.data(), 1);
         }},
        {s,
         "potrf",
         {{4, s.n, s.n}},
         [](int l, x &a) { return f::potrf(l, 'U', a.size.n, a.m[0].data(), a.m[0].ld); }},
        {s,
         "potrs",
         {{5, s.n, s.n}, {7, s.n, s.nrhs}},
         [](int l, x &a) {
             return f::potrs(l, 'U', a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(),
                             a.m[1].ld);
         }},
        {s,
         "posv",
         {{5, s.n, s.n}, {7, s.n, s.nrhs}},
         [](int l, x &a) {
             return f::posv(l, 'U', a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(),
                            a.m[1].ld);
         }},
        {s,
         "potri",
         {{4, s.n, s.n}},
         [](int l, x &a) { return f::potri(l, 'U', a.size.n, a.m[0].data(), a.m[0].ld); }},
        {s,
         "pocon",
         {{4, s.n, s.n}},
         [](int l, x &a) {
             return f::pocon(l, 'U', a.size.n, a.m[0].data(), a.m[0].ld, 30, &a.number);
         },
         2},
        {s,
         "lauum",
         {{4, s.n, s.n}},
         [](int l, x &a) { return f::lauum(l, 'U', a.size.n, a.m[0].data(), a.m[0].ld); }},
        {s,
         "trtri",
         {{5, s.n, s.n}},
         [](int l, x &a) { return f::trtri(l, 'U', 'N', a.size.n, a.m[0].data(), a.m[0].ld); }},
        {s,
         "trtrs",
         {{7, s.n, s.n}, {9, s.n, s.nrhs}},
         [](int l, x &a) {
             return f::trtrs(l, 'U', 'N', 'N', a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld,
                             a.m[1].data(), a.m[1].ld);
         }},
        {s,
         "trcon",
         {{6, s.n, s.n}},
         [](int l, x &a) {
             return f::trcon(l, 'I', 'U', 'N', a.size.n, a.m[0].data(), a.m[0].ld, &a.number);
         },
         2},
        {s,
         "geqrf",
         {{4, s.tall, s.n}},
         [](int l, x &a) {
             return f::geqrf(l, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {s,
         "gelqf",
         {{4, s.tall, s.n}},
         [](int l, x &a) {
             return f::gelqf(l, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {s,
         "geqp3",
         {{4, s.tall, s.n}},
         [](int l, x &a) {
             return f::geqp3(l, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld, a.pivots.data(),
                             a.vector.data());
         },
         is_complex<T> ? 2 : 1},
        {s,
         is_complex<T> ? "ungqr" : "orgqr",
         {{5, s.tall, s.n}},
         [](int l, x &a) {
             return f::orgqr(l, a.size.tall, a.size.n, a.size.n, a.m[0].data(), a.m[0].ld,
                             a.vector.data());
         },
         1},
        {s,
         is_complex<T> ? "unglq" : "orglq",
         {{5, s.n, s.tall}},
         [](int l, x &a) {
             return f::orglq(l, a.size.n, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld,
                             a.vector.data());
         },
         1},
        {s,
         is_complex<T> ? "unmqr" : "ormqr",
         {{7, s.tall, s.n}, {10, s.tall, s.nrhs}},
         [](int l, x &a) {
             return f::ormqr(l, 'L', adjoint, a.size.tall, a.size.nrhs, a.size.n, a.m[0].data(),
                             a.m[0].ld, a.vector.data(), a.m[1].data(), a.m[1].ld);
         },
         1},
        {s,
         is_complex<T> ? "unmlq" : "ormlq",
         {{7, s.n, s.tall}, {10, s.nrhs, s.tall}},
         [](int l, x &a) {
             return f::ormlq(l, 'R', adjoint, a.size.nrhs, a.size.tall, a.size.n, a.m[0].data(),
                             a.m[0].ld, a.vector.data(), a.m[1].data(), a.m[1].ld);
         },
         1},
        {s,
         "gels",
         {{6, s.tall, s.n}, {8, s.tall, s.nrhs}},
         [](int l, x &a) {
             return f::gels(l, 'N', a.size.tall, a.size.n, a.size.nrhs, a.m[0].data(), a.m[0].ld,
                            a.m[1].data(), a.m[1].ld);
         },
         1},
        {s,
         "larft",
         {{6, s.tall, s.n}, {9, s.n, s.n, false}},
         [](int l, x &a) {
             return f::larft(l, 'F', 'C', a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld,
                             a.vector.data(), a.m[1].data(), a.m[1].ld);
         }},
        {s,
         "larfb",
         {{9, s.tall, s.n}, {11, s.n, s.n}, {13, s.tall, s.nrhs}},
         [](int l, x &a) {
             return f::larfb(l, 'L', 'N', 'F', 'C', a.size.tall, a.size.nrhs, a.size.n,
                             a.m[0].data(), a.m[0].ld, a.m[1].data(), a.m[1].ld, a.m[2].data(),
                             a.m[2].ld);
         },
         1},
        {s,
         "lange",
         {{5, s.tall, s.n}},
         [](int l, x &a) {
             a.number = f::lange(l, 'I', a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {s,
         "lansy",
         {{5, s.n, s.n}},
         [](int l, x &a) {
             a.number = f::lansy(l, 'I', 'U', a.size.n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {s,
         "lantr",
         {{7, s.tall, s.n}},
         [](int l, x &a) {
             a.number = f::lantr(l, 'I', 'U', 'N', a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {s,
         "lacpy",
         {{5, s.tall, s.n}, {7, s.tall, s.n, false}},
         [](int l, x &a) {
             return f::lacpy(l, 'U', a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld, a.m[1].data(),
                             a.m[1].ld);
         }},
        {s,
         "laset",
         {{7, s.tall, s.n, false}},
         [](int l, x &a) {
             return f::laset(l, 'L', a.size.tall, a.size.n, make<T>(2), make<T>(3), a.m[0].data(),
                             a.m[0].ld);
         }},
        {s,
         "lascl",
         {{9, s.tall, s.n}},
         [](int l, x &a) {
             return f::lascl(l, 'G', 0, 0, 3, 2, a.size.tall, a.size.n, a.m[0].data(), a.m[0].ld);
         }},
    };
}

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
