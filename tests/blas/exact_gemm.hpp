// exact_gemm.hpp - general products of small integers: exact, whatever the order of the sums.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "blas/drivers/level3.hpp"
#include "tests/support/element_types.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"

namespace test {

using vox::index_t;

template <class T>
struct exact_gemm {
    char transa, transb;
    index_t m, n, k;
    T alpha, beta;
    index_t lda, ldb, ldc;
    std::vector<T> a, b, c, wanted; // c: before; wanted: after

    // Leading dimensions are `pad` beyond the least. Where beta = 0, C is NaN before.
    exact_gemm(const char *transposes, index_t rows, index_t columns, index_t depth, T s, T t,
               index_t pad = 0)
        : transa(transposes[0]), transb(transposes[1]), m(rows), n(columns), k(depth), alpha(s),
          beta(t), lda(std::max<index_t>(1, transa == 'N' ? m : k) + pad),
          ldb(std::max<index_t>(1, transb == 'N' ? k : n) + pad),
          ldc(std::max<index_t>(1, m) + pad), a(draw(lda * (transa == 'N' ? k : m))),
          b(draw(ldb * (transb == 'N' ? n : k))), c(draw(ldc * n)) {
        const auto nan = std::numeric_limits<real>::quiet_NaN();
        if (vox::is_zero(beta))
            c.assign(c.size(), vox::make<T>(nan, nan));
        wanted = c;
        for (index_t j = 0; j < n; ++j)
            for (index_t i = 0; i < m; ++i) {
                T &x = wanted[size_t(i + j * ldc)];
                const T old = vox::is_zero(beta) ? T{} : beta * x;
                x = vox::is_zero(alpha) ? old : alpha * sum(i, j) + old;
            }
    }

    vox::product<T> job(T *to) const {
        const vox::factor<T> x{a.data(), lda, transa != 'N', transa == 'C'};
        const vox::factor<T> y{b.data(), ldb, transb != 'N', transb == 'C'};
        return {m, n, k, alpha, x, y, beta, to, ldc};
    }

    // What is wrong in what run(C) makes of a copy of C, beyond its rows, too.
    template <class Run>
    std::string fault(const Run &run) const {
        std::vector<T> got = c;
        run(got.data());
        const auto same = [](real x, real y) { return x == y || (x != x && y != y); };
        for (size_t at = 0; at < c.size(); ++at) {
            const T x = got[at], y = wanted[at];
            if (same(vox::real(x), vox::real(y)) && same(vox::imag(x), vox::imag(y)))
                continue;
            std::ostringstream text;
            text << transa << transb << ' ' << m << " x " << n << " x " << k << ", ld " << lda
                 << ' ' << ldb << ' ' << ldc << ", beta " << vox::real(beta) << ": c[" << at
                 << "] is " << widen(x) << ", not " << widen(y);
            return text.str();
        }
        return "";
    }
    std::string driver_fault() const {
        return fault([this](T *to) {
            vox::gemm<T>(transa, transb, m, n, k, alpha, a.data(), lda, b.data(), ldb, beta, to,
                         ldc);
        });
    }

  private:
    using real = vox::real_of<T>;
    static std::vector<T> draw(index_t size) {
        static lottery lots{1};
        const auto number = [] { return real(int(lots.number() % 7) - 3); };
        std::vector<T> v(size_t(std::max<index_t>(0, size)));
        for (T &x : v)
            x = vox::make<T>(number(), number());
        return v;
    }
    T sum(index_t i, index_t j) const {
        double re = 0, im = 0;
        for (index_t p = 0; p < k; ++p) {
            const T x = a[size_t(transa == 'N' ? i + p * lda : p + i * lda)];
            const T y = b[size_t(transb == 'N' ? p + j * ldb : j + p * ldb)];
            const double xi = transa == 'C' ? -vox::imag(x) : vox::imag(x);
            const double yi = transb == 'C' ? -vox::imag(y) : vox::imag(y);
            re += vox::real(x) * vox::real(y) - xi * yi;
            im += vox::real(x) * yi + xi * vox::real(y);
        }
        return vox::make<T>(real(re), real(im));
    }
};

} // namespace test
