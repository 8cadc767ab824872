// level2_reference.hpp - a call of a level 2 routine, judged: operands made for it, the result
// computed again from the definition, element by element in long double, and everything that must
// not be touched looked at.
//
// Whatever a routine must not read holds NaN: the other triangle, a diagonal of ones, the imaginary
// parts of a Hermitian diagonal, gaps and padding, A and x where alpha = 0, y where beta = 0. Inputs
// are write-protected, operands lie at the edge of a page that may not be touched.
//
// Bounds, with |z| = |re z| + |im z|, in which every real operation on the parts of a complex number
// errs by at most u and products multiply: k terms of two factors, and alpha and beta, take at most
// k + 2 roundings in a row, 2 k + 4 for complex numbers (Higham, Accuracy and Stability of Numerical
// Algorithms, sections 3.1 and 3.6). Substitution leaves a residual of at most gamma(k + 2) |T| |x|
// (theorem 8.5, one rounding for the reciprocal); a complex division adds 6 roundings.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <sstream>

#include "tests/blas/draw.hpp"
#include "tests/blas/routine_tables.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"

namespace test {

// Where the elements of a matrix are: kl diagonals below and ku above the main one are stored.
struct storage {
    bool packed, band, row_major;
    int64_t m, n, kl, ku, lda;

    template <class T>
    storage(const routine<T> &r, const arguments<T> &a)
        : packed(!r.has('L')), band(r.has('k')), row_major(a.layout == CblasRowMajor),
          m(r.has('m') ? a.m : a.n), n(a.n), kl(band ? a.kl : m), ku(band ? a.ku : n), lda(a.lda) {
        if (r.has('u')) {
            kl = band ? a.ku : n;
            (std::toupper(a.uplo) == 'U' ? kl : ku) = 0;
        }
    }
    bool holds(int64_t i, int64_t j) const { return i - j <= kl && j - i <= ku; }
    int64_t first(int64_t i) const { return std::max<int64_t>(0, i - kl); } // column of row i
    int64_t end(int64_t i) const { return std::min(n, i + ku + 1); }
    int64_t offset(int64_t i, int64_t j) const {
        return row_major ? at(j, i, ku, kl) : at(i, j, kl, ku);
    }
    int64_t extent() const {
        int64_t most = -1;
        for (int64_t i = 0; i < m; ++i)
            if (first(i) < end(i))
                most = std::max({most, offset(i, first(i)), offset(i, end(i) - 1)});
        return most + 1;
    }

  private:
    int64_t at(int64_t i, int64_t j, int64_t below, int64_t above) const {
        if (packed)
            return below == 0 ? i + j * (j + 1) / 2 : i + j * (2 * n - j - 1) / 2;
        return (band ? above + i - j : i) + j * lda;
    }
};

inline size_t extent(int64_t n, int64_t inc) {
    return n > 0 ? size_t((n - 1) * std::abs(inc) + 1) : 0;
}
inline int64_t place(int64_t i, int64_t n, int64_t inc) { return (inc < 0 ? i - n + 1 : i) * inc; }

template <class T>
class trial {
    using R = vox::real_of<T>;
    static constexpr bool is_complex = vox::is_complex<T>;

  public:
    trial(const routine<T> &r, const arguments<T> &a, unsigned seed, std::optional<plant> p = {})
        : r_(r), given_(a), s_(r, a), seed_(seed), alpha_(widen(a.alpha)), beta_(widen(a.beta)),
          triangular_(r.has('d')), symmetric_(r.has('u')), hermitian_(r.hermitian()),
          two_vectors_(r.has('Y')), transposed_(r.has('t') && std::toupper(a.trans) != 'N'),
          conjugated_(std::toupper(a.trans) == 'C'),
          unit_(r.has('d') && std::toupper(a.diag) == 'U'), rows_(transposed_ ? s_.n : s_.m),
          columns_(transposed_ ? s_.m : s_.n), nx_(r.updates() ? s_.m : columns_),
          ny_(r.updates() ? s_.n : rows_) {
        if (r.real_alpha())
            alpha_ = real_part(alpha_);
        make_operands();
        if (p) // some vectors then begin or end with zeros
            put(*p);
    }

    // Makes the call; says what is wrong with its outcome, or nothing.
    std::string fault(const form<T> &call) const {
        const edge where = seed_ % 4 ? edge::back : edge::front;
        guarded<T> a(a_, where), x(x_, where), y(y_, where);
        const guarded<T> &result = r_.updates() ? a : r_.has('b') ? y : x;
        for (guarded<T> *operand : {&a, &x, &y})
            if (operand != &result)
                operand->freeze();
        arguments<T> arguments = given_;
        if (s_.m > 0 && s_.n > 0) {
            arguments.a = a.data();
            arguments.x = x.data();
            arguments.y = y.data();
        }
        call(arguments);
        if (s_.m == 0 || s_.n == 0)
            return {};
        return r_.updates() ? check_matrix(a.data()) : check_vector(result.data());
    }

  private:
    T number() {
        static const std::vector<R> pool = random_vector<R>(10007, 1);
        const R re = pool[++seed_ % 10007];
        return vox::make<T>(re, is_complex ? pool[++seed_ % 10007] : 0);
    }

    std::vector<T> vector(int64_t n, vox_int inc, bool read) {
        std::vector<T> v(extent(n, inc), not_to_be_read<T>());
        for (int64_t i = 0; read && i < n; ++i)
            v[size_t(place(i, n, inc))] = number();
        return v;
    }

    void make_operands() {
        const bool read = r_.has('d') || size(alpha_) != 0;
        x_ = vector(nx_, given_.incx, read);
        if (r_.has('Y'))
            y_ = vector(ny_, given_.incy, r_.updates() ? read : size(beta_) != 0);
        a_.assign(size_t(s_.extent()), not_to_be_read<T>());
        // Substitution keeps its numbers small with a dominant diagonal.
        const T scale = vox::make<T>(r_.solves() ? R(1) / R(s_.n) : R(1));
        const T shift = vox::make<T>(r_.solves() ? R(1.5) : R(0));
        for (int64_t i = 0; i < s_.m && (read || r_.updates()); ++i)
            for (int64_t j = s_.first(i); j < s_.end(i); ++j)
                if (i != j)
                    a_[size_t(s_.offset(i, j))] = scale * number();
                else if (!unit_)
                    a_[size_t(s_.offset(i, i))] = diagonal(scale * number() + shift);
    }
    T diagonal(T element) const {
        return r_.hermitian() ? vox::make<T>(vox::real(element), vox::imag(not_to_be_read<T>()))
                              : element;
    }

    void zero_run(std::vector<T> &v, int64_t n, vox_int inc) {
        const bool at_end = ++seed_ % 2;
        for (int64_t i = seed_ % 3 ? n : seed_ / 3 % (n + 1); i < n; ++i)
            v[size_t(place(at_end ? i : n - 1 - i, n, inc))] = T{};
    }

    void put(const plant &p) {
        if (!x_.empty())
            zero_run(x_, nx_, given_.incx);
        if (r_.updates() && !y_.empty())
            zero_run(y_, ny_, given_.incy);
        const int64_t some = seed_ / 7, i = some % std::max<int64_t>(1, s_.m);
        T *element = nullptr;
        if (p.operand == 'A' && s_.first(i) < s_.end(i)) {
            const int64_t j = s_.first(i) + some / 3 % (s_.end(i) - s_.first(i));
            // What is divided by a complex infinity depends on how.
            if (i != j || !(unit_ || (r_.solves() && std::isinf(p.value))))
                element = &a_[size_t(s_.offset(i, j))];
        } else if (p.operand == 'X' && nx_ > 0)
            element = &x_[size_t(place(some % nx_, nx_, given_.incx))];
        else if (p.operand == 'Y' && !y_.empty())
            element = &y_[size_t(place(some % ny_, ny_, given_.incy))];
        if (element)
            *element = vox::make<T>(R(p.value), vox::imag(*element));
    }

    // op(A)(i,j) with all that is implied, and the j that there are.
    wide<T> element(int64_t i, int64_t j) const {
        bool conjugated = transposed_ && conjugated_;
        if (transposed_)
            std::swap(i, j);
        if (i == j && unit_)
            return widen(vox::one<T>);
        if (!s_.holds(i, j)) { // the other triangle
            std::swap(i, j);
            conjugated = hermitian_;
        }
        const wide<T> stored = widen(a_[size_t(s_.offset(i, j))]);
        return i == j && hermitian_ ? real_part(stored) : conjugated ? conjugate(stored) : stored;
    }
    std::pair<int64_t, int64_t> terms(int64_t i) const {
        int64_t below = transposed_ ? s_.ku : s_.kl, above = transposed_ ? s_.kl : s_.ku;
        if (symmetric_ && !triangular_)
            below = above = std::max(below, above);
        return {std::max<int64_t>(0, i - below), std::min(columns_, i + above + 1)};
    }
    wide<T> x(int64_t i) const { return widen(x_[size_t(place(i, nx_, given_.incx))]); }
    wide<T> y(int64_t i) const { return widen(y_[size_t(place(i, ny_, given_.incy))]); }

    // A zero in a vector leaves its column of the array out, NaN or not (its row, by rows): in updates
    // and where op(A) of a triangle is taken by columns.
    bool triangle_by_columns() const { return triangular_ && transposed_ == s_.row_major; }
    bool left_out_of_update(int64_t i, int64_t j) const {
        const int64_t k = s_.row_major ? i : j;
        if (!symmetric_)
            return size(s_.row_major ? x(k) : y(k)) == 0;
        return size(x(k)) == 0 && (!two_vectors_ || size(y(k)) == 0);
    }

    struct outcome {
        wide<T> value;
        long double bound;
    };
    outcome product(int64_t i) const {
        const auto [first, end] = terms(i);
        wide<T> sum = {};
        long double magnitude = 0;
        if (triangular_ || size(alpha_) != 0)
            for (int64_t j = first; j < end; ++j) {
                const wide<T> e = element(i, j), factor = x(j);
                if (triangle_by_columns() && size(factor) == 0)
                    continue;
                sum = sum + e * factor;
                magnitude += size(e) * size(factor);
            }
        if (triangular_)
            return {sum, roundings<T>(end - first) * magnitude};
        magnitude *= size(alpha_);
        sum = size(alpha_) != 0 ? alpha_ * sum : wide<T>{};
        if (size(beta_) != 0) {
            sum = sum + beta_ * y(i);
            magnitude += size(beta_) * size(y(i));
        }
        return {sum, roundings<T>(std::max<int64_t>(0, end - first)) * magnitude};
    }

    // Element i of the solution from the other elements as they were computed: the residual's bound,
    // divided by the element of the diagonal.
    outcome solution(int64_t i, const T *computed) const {
        const auto [first, end] = terms(i);
        wide<T> rest = x(i);
        long double magnitude = 0;
        for (int64_t j = first; j < end; ++j) {
            const wide<T> e = element(i, j), factor = widen(computed[place(j, nx_, given_.incx)]);
            if (triangle_by_columns() && size(factor) == 0)
                continue;
            if (j != i)
                rest = rest - e * factor;
            magnitude += size(e) * size(factor);
        }
        if (triangle_by_columns() && size(rest) == 0)
            return {rest, 0};
        const wide<T> inverse = widen(vox::one<T>) / element(i, i);
        const int64_t k = end - first + (is_complex ? 3 : 0);
        // Behind a run of zeros a solution dies away: each product may underflow.
        const long double underflow = (4 * k + 4) * std::numeric_limits<R>::denorm_min();
        return {rest * inverse,
                (roundings<T>(k) * magnitude + underflow) * size(inverse) + underflow};
    }

    outcome update(int64_t i, int64_t j) const {
        const auto factor = [this](wide<T> z) {
            return hermitian_ || r_.name.back() == 'c' ? conjugate(z) : z;
        };
        const bool twice = symmetric_ && two_vectors_;
        const wide<T> second = factor(two_vectors_ ? y(j) : x(j));
        wide<T> value = alpha_ * (x(i) * second), old = widen(a_[size_t(s_.offset(i, j))]);
        long double magnitude = size(alpha_) * size(x(i)) * size(second);
        if (twice) {
            value = value + (hermitian_ ? conjugate(alpha_) : alpha_) * (y(i) * factor(x(j)));
            magnitude += size(alpha_) * size(y(i)) * size(x(j));
        }
        if (i == j && hermitian_) {
            value = real_part(value);
            old = real_part(old);
        }
        if (left_out_of_update(i, j))
            return {old, 0};
        return {old + value, roundings<T>(twice ? 2 : 1) * (size(old) + magnitude)};
    }

    std::string check_vector(const T *after) const {
        const bool y_is_result = r_.has('b');
        std::vector<T> expected = y_is_result ? y_ : x_;
        for (int64_t i = 0; i < rows_; ++i) {
            const int64_t at = place(i, rows_, y_is_result ? given_.incy : given_.incx);
            const outcome o = r_.solves() ? solution(i, after) : product(i);
            if (!agrees(after[at], o.value, o.bound))
                return wrong(i, 0, after[at], o.value, o.bound);
            expected[size_t(at)] = after[at];
        }
        return compare(expected, after);
    }

    std::string check_matrix(const T *after) const {
        std::vector<T> expected = a_;
        for (int64_t i = 0; i < s_.m && size(alpha_) != 0; ++i)
            for (int64_t j = s_.first(i); j < s_.end(i); ++j) {
                const int64_t at = s_.offset(i, j);
                const outcome o = update(i, j);
                const bool real = i == j && hermitian_;
                if (!agrees(after[at], o.value, o.bound) || (real && vox::imag(after[at]) != 0))
                    return wrong(i, j, after[at], o.value, o.bound);
                expected[size_t(at)] = after[at];
            }
        return compare(expected, after);
    }

    const routine<T> &r_;
    const arguments<T> given_;
    const storage s_;
    unsigned seed_;
    wide<T> alpha_;
    const wide<T> beta_;
    const bool triangular_, symmetric_, hermitian_, two_vectors_, transposed_, conjugated_, unit_;
    const int64_t rows_, columns_, nx_, ny_;
    std::vector<T> a_, x_, y_;
};

} // namespace test
