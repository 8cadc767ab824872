// operands.cpp - see operands.hpp.
#include "bench/peers/operands.hpp"

#include "bench/peers/types.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace {

using peers::arg;
using peers::is_complex;
using peers::make;
using peers::real_of;
using peers::returned;
using peers::storage;
using peers::test_case;

// Reproducible and of one sign, so that sums do not cancel: from 1/4 to 5/4.
double value(uint64_t i) { return 0.25 + peers::fraction(i); }
template <class T>
T element(uint64_t i) {
    return make<T>(value(2 * i), value(2 * i + 1) / 2);
}

// The operands of one case, in memory of enough size.
template <class T>
class operands {
  public:
    operands(const test_case &c, const peers::memory &m)
        : case_(c), a(static_cast<T *>(m.a)), x(static_cast<T *>(m.x)), y(static_cast<T *>(m.y)),
          m_(int(c.size.m)), n_(int(c.size.n)), k_(int(c.size.k)), lda_(rows(arg::a)),
          ldx_(rows(arg::x)), ldy_(rows(arg::y)), band_(std::min(n_ / 4, 16)), ldb_(2 * band_ + 1),
          beta_(real_of<T>(c.beta)) {}

    // General values. Triangles are well conditioned, whatever n.
    void fill() {
        for (size_t i = 0; i < elements(arg::x); ++i)
            x[i] = element<T>(i);
        for (size_t i = 0; i < elements(arg::y); ++i)
            y[i] = element<T>(i + 7919);
        const double terms = case_.what->level() == 3 ? case_.what->terms(case_.size) : double(n_);
        const real_of<T> scale = real_of<T>(1 / terms);
        for (size_t i = 0; i < elements(arg::a); ++i)
            a[i] = element<T>(i + 104729) * scale;
        if (case_.what->has(arg::diag))
            for (long i = 0; i < lda_; ++i)
                a[index(i, i)] += T(2);
    }

    // Values that stay finite however often the call is made on its own result: a triangle is its
    // own inverse, ( I 0 )
    //              ( B -I ),
    // and alpha there is of modulus 1, so trmm and trsm need no copy of B between calls. C grows by
    // about 1 per call where beta is 1.
    void fill_for_repetition() {
        fill();
        if (!case_.what->has(arg::diag))
            return;
        const bool packed = case_.what->matrix == storage::packed;
        for (long j = 0; j < lda_; ++j)
            for (long i = 0; i < lda_; ++i) {
                const bool upper_left = i < lda_ / 2, off = upper_left != (j < lda_ / 2);
                if (packed && i != j && (i > j) != (case_.shape.uplo == 'L'))
                    continue;
                if (!off)
                    a[index(i, j)] = T(i != j ? 0 : upper_left ? 1 : -1);
            }
    }

    const void *address(arg argument) const {
        switch (argument) {
        case arg::end:
            return nullptr;
        case arg::m:
            return &m_;
        case arg::n:
            return &n_;
        case arg::k:
            return &k_;
        case arg::lda:
            return &lda_;
        case arg::ldx:
            return &ldx_;
        case arg::ldy:
            return &ldy_;
        case arg::one:
            return &one_;
        case arg::band:
            return &band_;
        case arg::ldb:
            return &ldb_;
        case arg::alpha:
            return &alpha_;
        case arg::small:
            return &small_;
        case arg::turn:
            return &turn_;
        case arg::unity:
            return &unity_;
        case arg::beta:
            return &beta_;
        case arg::cosine:
            return &cosine_;
        case arg::sine:
            return &sine_;
        case arg::a:
            return a;
        case arg::x:
            return x;
        case arg::y:
            return y;
        case arg::uplo:
            return &case_.shape.uplo;
        case arg::trans:
            return &case_.shape.trans;
        case arg::diag:
        case arg::no_transpose:
            return "N";
        case arg::transpose:
            return "T";
        case arg::left:
        case arg::lower:
            return "L";
        case arg::right:
            return "R";
        case arg::upper:
            return "U";
        }
        return nullptr;
    }

    size_t elements(arg operand) const { return case_.what->elements(operand, case_.size); }

  private:
    int rows(arg operand) const { return int(case_.what->rows(operand, case_.size)); }
    size_t index(long i, long j) const {
        if (case_.what->matrix != storage::packed)
            return size_t(j * lda_ + i);
        return size_t(case_.shape.uplo == 'U' ? j * (j + 1) / 2 + i : j * n_ - j * (j + 1) / 2 + i);
    }

    const test_case &case_;

  public:
    T *const a, *const x, *const y;

  private:
    const int m_, n_, k_, lda_, ldx_, ldy_, band_, ldb_, one_ = 1;
    const T alpha_ = make<T>(0.75, 0.25), small_ = make<T>(1e-3, 5e-4), unity_ = T(1);
    const T beta_; // in front, where it is real in a complex call
    const T turn_ = is_complex<T> ? make<T>(0.6, 0.8) : T(-1);
    const real_of<T> cosine_ = real_of<T>(0.6), sine_ = real_of<T>(0.8);
};

// Gives body a function that takes one of the functions and calls it. The number of arguments and
// the type of the result are known to the compiler, so that the call costs what a program's costs.
template <class R, size_t... I, class Body>
auto with_call(std::index_sequence<I...>, const void *const *arguments, const Body &body) {
    return body([arguments](void *function) {
        return reinterpret_cast<R (*)(decltype(static_cast<const void *>(arguments[I]))...)>(
            function)(arguments[I]...);
    });
}

template <class T, class Body>
auto with_call(const peers::routine &r, const void *const *arguments, const Body &body) {
    const auto call = [&]<class R, size_t count>(std::integral_constant<size_t, count>, R *) {
        return with_call<R>(std::make_index_sequence<count>(), arguments, body);
    };
    switch (r.result) {
    case returned::element:
        return call(std::integral_constant<size_t, 5>(), static_cast<T *>(nullptr));
    case returned::magnitude:
        return call(std::integral_constant<size_t, 3>(), static_cast<real_of<T> *>(nullptr));
    case returned::index:
        return call(std::integral_constant<size_t, 3>(), static_cast<int *>(nullptr));
    case returned::nothing:
        break;
    }
    void *const none = nullptr;
    switch (r.argument_count()) {
    case 4:
        return call(std::integral_constant<size_t, 4>(), none);
    case 5:
        return call(std::integral_constant<size_t, 5>(), none);
    case 6:
        return call(std::integral_constant<size_t, 6>(), none);
    case 7:
        return call(std::integral_constant<size_t, 7>(), none);
    case 8:
        return call(std::integral_constant<size_t, 8>(), none);
    case 9:
        return call(std::integral_constant<size_t, 9>(), none);
    case 10:
        return call(std::integral_constant<size_t, 10>(), none);
    case 11:
        return call(std::integral_constant<size_t, 11>(), none);
    case 12:
        return call(std::integral_constant<size_t, 12>(), none);
    case 13:
        return call(std::integral_constant<size_t, 13>(), none);
    }
    std::abort(); // a row of the table with another number of arguments
}

struct argument_list {
    const void *addresses[14];

    template <class T>
    argument_list(const peers::routine &r, const operands<T> &o) {
        for (size_t i = 0; i < std::size(addresses); ++i)
            addresses[i] = o.address(r.arguments[i]);
    }
};

template <class T>
std::vector<double> seconds_in(const test_case &c, const std::vector<void *> &functions,
                               const peers::memory &m, peers::effort allowed) {
    operands<T> o(c, m);
    o.fill_for_repetition();
    const argument_list list(*c.what, o);
    return with_call<T>(*c.what, list.addresses, [&](const auto &call) {
        return peers::best_times(functions.size(), allowed,
                                 [&](size_t i) { (void)call(functions[i]); });
    });
}

// Largest difference over largest value; a NaN is the largest difference.
template <class T>
double difference(const T *p, const T *q, size_t n) {
    double largest = 0, scale = 0;
    for (size_t i = 0; i < n; ++i) {
        const double d = double(std::abs(p[i] - q[i]));
        if (!(d <= largest))
            largest = d == d ? d : INFINITY;
        scale = std::max(scale, double(std::abs(q[i])));
    }
    return largest == 0 ? 0 : largest / scale;
}

// A sum of n rounded terms is off by about sqrt(n) units (Higham and Mary, A New Approach to
// Probabilistic Rounding Error Analysis, SIAM J. Sci. Comput. 41(5), 2019); 8 of them leave room for
// two results and complex arithmetic. n eps would let half of a long single-precision sum be lost.
template <class T>
double bound(const test_case &c) {
    return 8 * std::sqrt(c.what->terms(c.size)) *
           double(std::numeric_limits<real_of<T>>::epsilon());
}

template <class T>
bool agree_in(const test_case &c, void *const functions[2], peers::memory *const m[2],
              std::string &where) {
    operands<T> pair[2] = {{c, *m[0]}, {c, *m[1]}};
    T result[2] = {};
    for (int side = 0; side < 2; ++side) {
        pair[side].fill();
        const argument_list list(*c.what, pair[side]);
        with_call<T>(*c.what, list.addresses, [&](const auto &call) {
            if constexpr (std::is_void_v<decltype(call(nullptr))>)
                call(functions[side]);
            else
                result[side] = T(call(functions[side]));
        });
    }
    const struct {
        const char *name;
        double difference;
    } parts[] = {
        {"result", difference(&result[0], &result[1], 1)},
        {"x", difference(pair[0].x, pair[1].x, pair[0].elements(arg::x))},
        {"y", difference(pair[0].y, pair[1].y, pair[0].elements(arg::y))},
        {"a", difference(pair[0].a, pair[1].a, pair[0].elements(arg::a))},
    };
    const bool exact = c.what->result == returned::index;
    for (const auto &part : parts)
        if (!(part.difference <= (exact ? 0 : bound<T>(c)))) {
            char text[32];
            std::snprintf(text, sizeof text, " differs by %.1e", part.difference);
            where = part.name + std::string(text);
            return false;
        }
    return true;
}

// Blocks begin at a page. At the same offset in their pages, a store to one would delay a load from
// the next, so they are kept apart, as they mostly are in programs.
constexpr size_t offset_step = 1088;

} // namespace

peers::memory::memory(size_t a_bytes, size_t x_bytes, size_t y_bytes) {
    const size_t bytes[] = {x_bytes, y_bytes, a_bytes};
    void **const parts[] = {&x, &y, &a};
    for (size_t i = 0; i < 3; ++i) {
        blocks_[i] = std::aligned_alloc(4096, (bytes[i] + i * offset_step + 4095) / 4096 * 4096);
        if (!blocks_[i])
            std::abort();
        *parts[i] = static_cast<char *>(blocks_[i]) + i * offset_step;
    }
}

peers::memory::~memory() {
    for (void *block : blocks_)
        std::free(block);
}

std::vector<double> peers::seconds(const test_case &c, const std::vector<void *> &functions,
                                   memory &m, effort allowed) {
    return with_type(c.type, [&]<class T>(T) { return seconds_in<T>(c, functions, m, allowed); });
}

bool peers::agree(const test_case &c, void *const functions[2], memory *const m[2],
                  std::string &where) {
    return with_type(c.type, [&]<class T>(T) { return agree_in<T>(c, functions, m, where); });
}
