// directions.cpp - see directions.hpp.
#include "rng/brng/directions.hpp"

#include <string.h>

#include "rng/brng/polynomials.hpp"

// P. Bratley, B. L. Fox, "Algorithm 659: implementing Sobol's quasirandom sequence generator", ACM TOMS 14 (1988)
// 88-100: with the polynomial x^s + c_1 x^(s-1) + ... + c_s and v_i = m_i 2^(32-i), counted from 1,
// v_i = c_1 v_(i-1) ^ ... ^ c_s v_(i-s) ^ v_(i-s) 2^-s.
void vox::rng::sobol_directions(uint32_t polynomial, const uint32_t *m, directions &v) {
    const int s = gf2::degree(polynomial);
    for (int i = 0; i < direction_bits; ++i) {
        if (i < s) {
            v[i] = m[i] << (direction_bits - 1 - i);
            continue;
        }
        v[i] = v[i - s] >> s;
        for (int k = 1; k <= s; ++k)
            if (polynomial >> (s - k) & 1)
                v[i] ^= v[i - k];
    }
}

// P. Bratley, B. L. Fox, H. Niederreiter, "Implementation and tests of low-discrepancy sequences", ACM TOMS 2
// (1992) 195-213: bit j of the coordinate (from the top) comes from the sequence of bits u with the
// characteristic polynomial p^q, q = j / e + 1, that begins with zeros up to the degree of p^(q-1) and has
// ones up to that of p^q; v_r takes u_(r + j mod e). e is the degree of p.
void vox::rng::niederreiter_directions(uint32_t p, directions &v) {
    const int e = gf2::degree(p);
    memset(v, 0, sizeof v);
    uint64_t power = 1, u = 0; // p^q; bit i is u_i
    for (int j = 0; j < direction_bits; ++j) {
        if (j % e == 0) {
            const int before = gf2::degree(power);
            power = gf2::product(power, p);
            const int m = gf2::degree(power);
            u = (uint64_t(1) << m) - (uint64_t(1) << before);
            const uint64_t feedback = power ^ uint64_t(1) << m;
            for (int i = m; i < 64; ++i)
                u |= uint64_t(__builtin_parityll(feedback & u >> (i - m))) << i;
        }
        for (int r = 0; r < direction_bits; ++r)
            v[r] |= uint32_t(u >> (r + j % e) & 1) << (direction_bits - 1 - j);
    }
}

bool vox::rng::are_initial_integers(const uint32_t *m, int n) {
    for (int i = 0; i < n; ++i)
        if (!(m[i] & 1) || m[i] >> i > 1)
            return false;
    return true;
}

bool vox::rng::are_independent(const directions &v) {
    uint32_t basis[direction_bits] = {}; // by the highest bit
    for (uint32_t x : v) {
        while (x && basis[gf2::degree(x)])
            x ^= basis[gf2::degree(x)];
        if (!x)
            return false;
        basis[gf2::degree(x)] = x;
    }
    return true;
}
