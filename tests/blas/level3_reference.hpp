// level3_reference.hpp - a call of a level 3 routine, judged: operands made for it, the result
// computed again from the definition in higher precision, and everything that must not be touched
// looked at.
//
// Whatever a routine must not read holds NaN: padding, the other triangle, a diagonal of ones, the
// imaginary parts of a Hermitian diagonal, A and B where alpha = 0, C where beta = 0. Inputs are
// write-protected, operands lie at the edge of a page that may not be touched; around a result are
// numbers that must keep their bits.
//
// Bounds, with |z| = |re z| + |im z|, for k terms to an element, 2 k in updates of rank 2k, summed in
// any order: gamma(k + 2) (|alpha| |op(A)| |op(B)| + |beta| |C|), for complex numbers gamma(2 k + 4)
// (Higham, Accuracy and Stability of Numerical Algorithms, sections 3.1, 3.5 and 3.6). Substitution
// leaves |alpha B - op(A) X| <= gamma(k + 2) (|alpha| |B| + |op(A)| |X|) (theorem 8.5, one rounding for
// alpha, one for a reciprocal of the diagonal); a complex division adds 6 roundings.
#pragma once

#include <cmath>
#include <cstring>
#include <optional>
#include <sstream>

#include "tests/blas/draw.hpp"
#include "tests/blas/routine_tables.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/wide.hpp"

namespace test {

template <class T>
const routine<T> &routine_named(const std::string &name) { // without the letter of the precision
    for (const routine<T> &r : level3_routines<T>())
        if (r.name.substr(1) == name)
            return r;
    std::abort();
}

template <class T>
char result_of(const routine<T> &r) {
    return r.has('C') ? 'C' : 'B';
}
template <class T>
T *&matrix_of(arguments<T> &a, char matrix) {
    return matrix == 'A' ? a.a : matrix == 'B' ? a.x : a.y;
}

// An operand as it lies in memory.
template <class T>
struct stored_matrix {
    int64_t rows = 0, columns = 0, ld = 1;
    bool row_major = false;
    std::vector<T> values;

    stored_matrix(std::pair<int64_t, int64_t> shape, int64_t its_ld, CBLAS_LAYOUT layout)
        : rows(shape.first), columns(shape.second), ld(its_ld), row_major(layout == CblasRowMajor) {
        if (rows > 0 && columns > 0)
            values.resize(size_t(offset(rows - 1, columns - 1)) + 1);
    }
    int64_t offset(int64_t i, int64_t j) const { return row_major ? i * ld + j : i + j * ld; }
    T &operator()(int64_t i, int64_t j) { return values[size_t(offset(i, j))]; }
    T operator()(int64_t i, int64_t j) const { return values[size_t(offset(i, j))]; }
};

// What products for T are summed in: its rounding errors are lost in those of T.
template <class T>
using summand = std::conditional_t<std::is_same_v<vox::real_of<T>, float>, double, long double>;

// A factor as its rows, or its columns: what is to be multiplied lies side by side.
template <class T>
struct lines {
    using R = vox::real_of<T>;
    int64_t length;
    std::vector<R> re, im;
    std::vector<summand<T>> magnitude;
    std::vector<std::pair<int64_t, int64_t>> present; // first and end of what elements there are

    // From element(line, place), which may be none.
    template <class Element>
    lines(int64_t count, int64_t its_length, Element element)
        : length(its_length), re(size_t(count * length)), im(vox::is_complex<T> ? re.size() : 0),
          magnitude(re.size()), present(size_t(count), {length, 0}) {
        for (int64_t i = 0, at = 0; i < count; ++i)
            for (int64_t l = 0; l < length; ++l, ++at)
                if (const std::optional<T> e = element(i, l)) {
                    present[size_t(i)] = {std::min(present[size_t(i)].first, l), l + 1};
                    re[size_t(at)] = vox::real(*e);
                    if (vox::is_complex<T>)
                        im[size_t(at)] = vox::imag(*e);
                    magnitude[size_t(at)] =
                        std::fabs(summand<T>(vox::real(*e))) + std::fabs(summand<T>(vox::imag(*e)));
                }
    }
};

// A value, and what its error is measured by.
template <class T>
struct measured {
    wide<T> value = {};
    long double magnitude = 0;

    measured &add(wide<T> factor, const measured &term) {
        if (size(factor) != 0) {
            value = value + factor * term.value;
            magnitude += size(factor) * term.magnitude;
        }
        return *this;
    }
};
template <class T>
measured<T> measure(T a) {
    return {widen(a), size(widen(a))};
}

// Row i of P times column j of Q.
template <class T>
measured<T> product(const lines<T> &p, int64_t i, const lines<T> &q, int64_t j) {
    using S = summand<T>;
    const auto [first_p, end_p] = p.present[size_t(i)];
    const auto [first_q, end_q] = q.present[size_t(j)];
    const int64_t first = std::max(first_p, first_q), end = std::min(end_p, end_q);
    const size_t at_p = size_t(i * p.length), at_q = size_t(j * q.length);
    S re = 0, im = 0, magnitude = 0;
    for (size_t l = size_t(first); int64_t(l) < end; ++l) {
        const S pr = p.re[at_p + l], qr = q.re[at_q + l];
        if constexpr (vox::is_complex<T>) {
            const S pi = p.im[at_p + l], qi = q.im[at_q + l];
            re += pr * qr - pi * qi;
            im += pr * qi + pi * qr;
        } else
            re += pr * qr;
        magnitude += p.magnitude[at_p + l] * q.magnitude[at_q + l];
    }
    if constexpr (vox::is_complex<T>)
        return {{re, im}, magnitude};
    else
        return {re, magnitude};
}

template <class T>
class trial {
    using R = vox::real_of<T>;
    using W = wide<T>;
    static constexpr bool is_complex = vox::is_complex<T>;

  public:
    // scales: of the equations that are solved, in turn. integers: small ones, of which products have no
    // error as long as alpha and beta are integers.
    trial(const routine<T> &r, const arguments<T> &given, unsigned seed,
          std::optional<plant> p = {}, std::vector<R> scales = {R(1)}, bool integers = false)
        : r_(r), given_(given), seed_(seed), scales_(scales), integers_(integers),
          a_(shape('A'), given.lda, given.layout), b_(shape('B'), given.ldb, given.layout),
          c_(shape('C'), given.ldc, given.layout), result_(r.has('C') ? c_ : b_),
          alpha_(r.hermitian() && is_update(r) && !r.has('B') ? W(vox::real(given.alpha))
                                                              : widen(given.alpha)),
          beta_(r.hermitian() && is_update(r) ? W(vox::real(given.beta)) : widen(given.beta)),
          left_(option('e') == 'L'), upper_(option('u') == 'U'),
          triangle_of_c_(r.has('u') && !r.has('e')), real_diagonal_(r.hermitian() && is_update(r)),
          unit_(r.has('d') && option('d') == 'U') {
        make_operands();
        if (p)
            put(*p);
    }

    // Makes the call; says what is wrong with its outcome, or nothing.
    std::string fault(const form<T> &call) const {
        const edge where = seed_ % 4 ? edge::back : edge::front;
        guarded<T> a(a_.values, where), b(b_.values, where), c(c_.values, where);
        a.freeze();
        if (r_.has('C'))
            b.freeze();
        arguments<T> arguments = given_;
        arguments.a = a.data();
        arguments.x = b.data();
        arguments.y = c.data();
        call(arguments);
        stored_matrix<T> after = result_;
        if (!after.values.empty())
            std::memcpy(after.values.data(), matrix_of(arguments, result_of(r_)),
                        after.values.size() * sizeof(T));
        return r_.solves() && size(alpha_) != 0 ? check_solution(after) : check_product(after);
    }

  private:
    char option(char letter) { return char(std::toupper(arguments<T>(given_).option(letter))); }
    std::pair<int64_t, int64_t> shape(char matrix) const {
        return r_.has(matrix) ? r_.shape(matrix, given_) : std::pair<int64_t, int64_t>();
    }

    T number() {
        static const std::vector<R> pool = random_vector<R>(10007, 1);
        const auto next = [this] {
            const R some = pool[++seed_ % 10007];
            return integers_ ? std::floor(4 * some) : some;
        };
        const R re = next();
        return vox::make<T>(re, is_complex ? next() : 0);
    }
    R scale(int64_t equation) const { return scales_[size_t(equation) % scales_.size()]; }
    bool in_result(int64_t i, int64_t j) const {
        return !triangle_of_c_ || (upper_ ? i <= j : i >= j);
    }

    void make_operands() {
        const bool read = size(alpha_) != 0;
        for (stored_matrix<T> *m : {&a_, &b_, &c_})
            for (T &value : m->values)
                value = m == &result_ ? number() : not_to_be_read<T>();
        for (int64_t j = 0; j < a_.columns && read; ++j)
            for (int64_t i = 0; i < a_.rows; ++i)
                if (!r_.has('e'))
                    a_(i, j) = number();
                else if (upper_ ? i <= j : i >= j)
                    a_(i, j) = in_triangle(i, j);
        // A system's right-hand sides have its scale, so that solutions are of the order of one.
        for (int64_t j = 0; j < b_.columns; ++j)
            for (int64_t i = 0; i < b_.rows; ++i)
                b_(i, j) = !read ? not_to_be_read<T>() : R(scale(left_ ? i : j)) * number();
        for (int64_t j = 0; j < c_.columns; ++j)
            for (int64_t i = 0; i < c_.rows; ++i)
                if (in_result(i, j) && size(beta_) == 0)
                    c_(i, j) = not_to_be_read<T>();
                else if (i == j && real_diagonal_)
                    c_(i, j) = vox::make<T>(vox::real(c_(i, j)), vox::imag(not_to_be_read<T>()));
    }
    T in_triangle(int64_t i, int64_t j) {
        if (i == j && unit_)
            return not_to_be_read<T>();
        const T e = number();
        if (!r_.solves())
            return i == j && r_.hermitian()
                       ? vox::make<T>(vox::real(e), vox::imag(not_to_be_read<T>()))
                       : e;
        // Substitution keeps its numbers small with a dominant diagonal. An equation is a row of op(A) at
        // the left, a column at the right.
        const R s = unit_ ? R(1) : scale(left_ == (option('t') == 'N') ? i : j);
        return s * (i == j ? vox::make<T>(R(1.5)) + R(0.125) * e : R(1) / R(a_.rows) * e);
    }

    void put(const plant &p) {
        stored_matrix<T> &m = p.operand == 'A' ? a_ : p.operand == 'B' ? b_ : c_;
        if (m.values.empty())
            return;
        int64_t i = seed_ / 7 % m.rows, j = seed_ / 11 % m.columns;
        const bool one_triangle =
            p.operand == 'A' ? r_.has('e') : p.operand == 'C' && triangle_of_c_;
        if (one_triangle && (upper_ ? i > j : i < j))
            std::swap(i, j);
        // What is divided by an infinity, and where blocks are inverted first, depends on how.
        if (p.operand == 'A' && r_.has('d') &&
            ((unit_ && i == j) || (r_.solves() && std::isinf(p.value))))
            return;
        m(i, j) = vox::make<T>(R(p.value), vox::imag(m(i, j)));
    }

    // op(A)(i, j) with all that is implied; none where a triangle has none.
    std::optional<T> a(int64_t i, int64_t j) const { return element(a_, given_.trans, i, j); }
    std::optional<T> b(int64_t i, int64_t j) const {
        return element(b_, r_.has('v') ? given_.transb : r_.has('e') ? 'N' : given_.trans, i, j);
    }
    std::optional<T> element(const stored_matrix<T> &m, char trans, int64_t i, int64_t j) const {
        bool conjugated = std::toupper(trans) == 'C';
        if (std::toupper(trans) != 'N')
            std::swap(i, j);
        if (&m == &a_ && r_.has('e')) {
            if (unit_ && i == j)
                return vox::one<T>;
            if (upper_ ? i > j : i < j) {
                if (r_.has('d'))
                    return {};
                std::swap(i, j);
                conjugated = r_.hermitian();
            }
            if (i == j && r_.hermitian())
                return vox::make<T>(vox::real(m(i, j)));
        }
        return vox::conj_if(conjugated, m(i, j));
    }

    // alpha P Q and how many terms there are to an element; nothing where alpha = 0 or k = 0.
    std::function<measured<T>(int64_t, int64_t)> sums(int64_t &terms) const {
        const auto [m, n] = r_.shape(result_of(r_), given_);
        const int64_t k = r_.has('e') ? a_.rows : given_.k;
        terms = size(alpha_) == 0 ? 0 : k;
        if (terms == 0)
            return [](int64_t, int64_t) { return measured<T>(); };
        const auto rows = [this, k](auto of, int64_t count) {
            return lines<T>(count, k,
                            [this, of](int64_t i, int64_t l) { return (this->*of)(i, l); });
        };
        const auto columns = [this, k](auto of, int64_t count) {
            return lines<T>(count, k,
                            [this, of](int64_t j, int64_t l) { return (this->*of)(l, j); });
        };
        if (r_.has('e') && !left_)
            return alpha_times(rows(&trial::b, m), columns(&trial::a, n));
        if (r_.has('e') || r_.has('v'))
            return alpha_times(rows(&trial::a, m), columns(&trial::b, n));
        // C's own transpose: the columns of op(A)' are the rows of op(A).
        const auto mirrored = [this, k](auto of, int64_t count) {
            return lines<T>(count, k, [this, of](int64_t j, int64_t l) {
                return std::optional<T>(vox::conj_if(r_.hermitian(), *(this->*of)(j, l)));
            });
        };
        if (!r_.has('B'))
            return alpha_times(rows(&trial::a, m), mirrored(&trial::a, n));
        terms = 2 * k;
        const W factor = r_.hermitian() ? conjugate(alpha_) : alpha_;
        return [factor, one = alpha_times(rows(&trial::a, m), mirrored(&trial::b, n)),
                p = rows(&trial::b, m), q = mirrored(&trial::a, n)](int64_t i, int64_t j) {
            return one(i, j).add(factor, test::product(p, i, q, j));
        };
    }
    std::function<measured<T>(int64_t, int64_t)> alpha_times(lines<T> p, lines<T> q) const {
        return [p = std::move(p), q = std::move(q), alpha = alpha_](int64_t i, int64_t j) {
            return measured<T>().add(alpha, test::product(p, i, q, j));
        };
    }

    bool on_real_diagonal(int64_t i, int64_t j) const { return i == j && real_diagonal_; }

    // What a product is and its errors' bounds, column by column; nothing where there is nothing to do.
    struct outcome {
        W value;
        long double bound;
    };
    std::vector<outcome> outcomes() const {
        int64_t terms;
        const auto sum = sums(terms);
        std::vector<outcome> all;
        if (terms == 0 && r_.has('b') && beta_ == W(1))
            return all;
        for (int64_t j = 0; j < result_.columns; ++j)
            for (int64_t i = 0; i < result_.rows; ++i) {
                if (!in_result(i, j))
                    continue;
                const bool real = on_real_diagonal(i, j);
                measured<T> right = sum(i, j);
                if (r_.has('b')) {
                    const T old = result_(i, j);
                    right.add(beta_, measure(real ? vox::make<T>(vox::real(old)) : old));
                }
                all.push_back({real ? real_part(right.value) : right.value,
                               integers_ ? 0 : roundings<T>(terms) * right.magnitude});
            }
        return all;
    }

    std::string check_product(const stored_matrix<T> &after) const {
        stored_matrix<T> expected = result_;
        if (outcomes_.empty()) // of the first call
            outcomes_ = outcomes();
        auto right = outcomes_.begin();
        for (int64_t j = 0; j < after.columns && !outcomes_.empty(); ++j)
            for (int64_t i = 0; i < after.rows; ++i) {
                if (!in_result(i, j))
                    continue;
                const T got = after(i, j);
                if (!agrees(got, right->value, right->bound) ||
                    (on_real_diagonal(i, j) && vox::imag(got) != 0))
                    return wrong(i, j, got, right->value, right->bound);
                expected(i, j) = got;
                ++right;
            }
        return compare(expected.values, after.values.data());
    }

    // Each element of the solution from the other elements as they were computed: the residual's bound,
    // divided by the element of the diagonal. Scaled equations may lose subnormal products.
    std::string check_solution(const stored_matrix<T> &after) const {
        stored_matrix<T> expected = result_;
        const int64_t n = a_.rows;
        const auto others = [this](int64_t i, int64_t l) {
            return i == l ? std::optional<T>() : left_ ? a(i, l) : a(l, i);
        };
        const lines<T> triangle(n, n, others),
            x(left_ ? after.columns : after.rows, n, [&](int64_t i, int64_t l) {
                return std::optional<T>(left_ ? after(l, i) : after(i, l));
            });
        const long double underflow = (4 * n + 8) * std::numeric_limits<R>::denorm_min();
        for (int64_t j = 0; j < after.columns; ++j)
            for (int64_t i = 0; i < after.rows; ++i) {
                const int64_t equation = left_ ? i : j;
                const T got = after(i, j);
                const measured<T> diagonal = measure(*a(equation, equation));
                measured<T> right = measured<T>().add(alpha_, measure(result_(i, j)));
                right.add(W(-1), test::product(triangle, equation, x, left_ ? j : i));
                right.magnitude += diagonal.magnitude * size(widen(got));
                const W inverse = W(1) / diagonal.value;
                right.value = right.value * inverse;
                const long double bound =
                    (roundings<T>(n + (is_complex ? 3 : 0)) * right.magnitude + underflow) *
                        size(inverse) +
                    underflow;
                if (!agrees(got, right.value, bound))
                    return wrong(i, j, got, right.value, bound);
                expected(i, j) = got;
            }
        return compare(expected.values, after.values.data());
    }

    const routine<T> &r_;
    const arguments<T> given_;
    unsigned seed_;
    const std::vector<R> scales_;
    const bool integers_;
    stored_matrix<T> a_, b_, c_;
    const stored_matrix<T> &result_;
    const W alpha_, beta_;
    const bool left_, upper_, triangle_of_c_, real_diagonal_, unit_;
    mutable std::vector<outcome> outcomes_;
};

} // namespace test
