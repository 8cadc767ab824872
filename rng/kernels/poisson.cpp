// poisson.cpp - the Poisson distribution, by the inverse of its distribution function: one uniform a variate.
//
// A mean below 100 makes a table of the function; the others take the asymptotic inverse of the incomplete
// gamma function (N. M. Temme, SIAM J. Math. Anal. 13 (1982) 239-253). Its error is below 1e-5 of a count.
#include "rng/kernels/variates.hpp"

namespace {

using namespace variates;

constexpr double large = 100;

// Of the counts with probabilities that matter, their distribution function; and where to begin to look for a
// uniform, by its first bits. For a mean below `large` the function is 1 - 2^-64 well before the end.
struct table {
    static constexpr int counts = 256, starts = 256;
    double function[counts];
    uint8_t start[starts];

    // Probabilities in units of that of the mode, from which they fall to both sides.
    explicit table(double mean) {
        const int mode = int(mean);
        double *const p = function;
        p[mode] = 1;
        for (int k = mode; k > 0; --k)
            p[k - 1] = p[k] * (double(k) / mean);
        for (int k = mode + 1; k < counts; ++k)
            p[k] = p[k - 1] * (mean / double(k));
        for (int k = 1; k < counts; ++k)
            p[k] += p[k - 1];
        const double total = p[counts - 1];
        for (int k = 0; k < counts; ++k)
            p[k] /= total;
        for (int i = 0, k = 0; i < starts; ++i) {
            while (k < counts - 1 && p[k] <= double(i) / starts)
                ++k;
            start[i] = uint8_t(k);
        }
    }
    int count(double u) const {
        int k = start[int(u * starts)];
        while (k < counts - 1 && function[k] <= u)
            ++k;
        return k;
    }
};

// With s = z / sqrt(mean), z normal, the count is the whole part of mean f(s) + c0(s) + c1(s) / mean, where
// f(s) = 1 + s + s^2 f2(s).
inline doubles count(doubles z, double mean, double root) {
    constexpr double f2[] = {
        0.16666666689527737,    -0.013888889031300544,  0.0037036778896457697,
        -0.0013310024385509987, 0.0005589641092500956,  -0.00025834347328591406,
        0.00012423500779792013, -6.402531275417848e-05, 4.5214579622981465e-05,
        -2.568457700094108e-05, -3.710661062020886e-06, 2.788434405735481e-06,
        1.3666466258949914e-05, -8.369973500464439e-06};
    constexpr double c0[] = {0.3333333333333333,     -0.0277735440470608,    0.008639339343995137,
                             -0.0035872695002045997, 0.0016930192183730126,  -0.0005992600605600731,
                             0.0003054736494791253,  -0.0005816900561036323, 0.0003506386695385771};
    constexpr double c1[] = {-0.0197530864, 0.01735, -0.0135, 0.0094};
    const doubles s = z / root;
    const doubles x = z * root * (1.0 + s * math::polynomial(s, f2)) +
                      (math::polynomial(s, c0) + math::polynomial(s, c1) / mean);
    const doubles sum = mean + x;
    // in this order also where the mean is not a number
    return math::floor(math::smaller(math::larger(sum, doubles{}), doubles{} + 0x1.fffffffcp30));
}

} // namespace

extern "C" int VOX_KERNEL_NAMED(rng, iRngPoisson)(int, stream *s, int n, int32_t *r, double mean) {
    if (mean < large) {
        const table counts(mean);
        return in_blocks<1, 1>(s, n, r, [&](const double *u, int m, int32_t *to) {
            for (int i = 0; i < m; ++i)
                to[i] = counts.count(u[i]);
        });
    }
    const double root = math::sqrt(doubles{} + mean)[0];
    return draw_from_normal(s, n, r, [&](const auto &normal, auto &z) VOX_INLINED {
        z[0] = count(normal[0], mean, root);
    });
}
