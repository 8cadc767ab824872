// roots_of_two.hpp - 2^(j/256) for 0 <= j < 256, in twice the precision of a double: head (1 + tail).
//
// The head is the double nearest to the root; the tail is what is missing, as a part of it.
#pragma once

namespace vox::vm {

struct root_of_two {
    double head, tail;
};
constexpr int root_count = 256;

struct root_table {
    root_of_two roots[root_count];
    constexpr root_table() : roots() {
        // 2^(1/2), 2^(1/4), ...: the nearest double, and what is missing.
        constexpr root_of_two halves[] = {{0x1.6a09e667f3bcdp+0, -0x1.bdd3413b26456p-54},
                                          {0x1.306fe0a31b715p+0, 0x1.6f46ad23182e4p-55},
                                          {0x1.172b83c7d517bp+0, -0x1.19041b9d78a76p-55},
                                          {0x1.0b5586cf9890fp+0, 0x1.8a62e4adc610bp-54},
                                          {0x1.059b0d3158574p+0, 0x1.d73e2a475b465p-55},
                                          {0x1.02c9a3e778061p+0, -0x1.19083535b085dp-56},
                                          {0x1.0163da9fb3335p+0, 0x1.b61299ab8cdb7p-54},
                                          {0x1.00b1afa5abcbfp+0, -0x1.4f6b2a7609f71p-55}};
        for (int j = 0; j < root_count; ++j) {
            root_of_two x = {1, 0};
            for (int i = 0; i < 8; ++i)
                if (j >> (7 - i) & 1)
                    x = product(x, halves[i]);
            roots[j] = {x.head, x.tail / x.head};
        }
    }

  private:
    // 27 bits of it: products of what they leave are exact (T. J. Dekker, Numer. Math. 18 (1971) 224-242).
    static constexpr double upper(double x) {
        return x * 0x1.0000002p27 - (x * 0x1.0000002p27 - x);
    }
    // (a.head + a.tail) (b.head + b.tail) as such a sum.
    static constexpr root_of_two product(root_of_two a, root_of_two b) {
        const double p = a.head * b.head;
        const double ah = upper(a.head), al = a.head - ah, bh = upper(b.head), bl = b.head - bh;
        const double rest =
            ((ah * bh - p) + ah * bl + al * bh) + al * bl + (a.head * b.tail + a.tail * b.head);
        return {p + rest, rest - (p + rest - p)};
    }
};
inline constexpr root_table roots_of_two{};

} // namespace vox::vm
