// roots_of_two.hpp - 2^(j/256) for 0 <= j < 256, beyond the precision of a double: head (1 + tail).
//
// The head is the double nearest to the root; the tail is what is missing, as a part of it. Together they are within
// 2^-60 of the root.
#pragma once

namespace vox::vm {

struct root_of_two {
    double head, tail;
};
constexpr int root_count = 256;

struct root_table {
    root_of_two roots[root_count];
    constexpr root_table() : roots() {
        // 2^(1/2), 2^(1/4), ..., with 64 bits.
        constexpr long double halves[] = {0x1.6a09e667f3bcc908p+0L, 0x1.306fe0a31b7152dep+0L,
                                          0x1.172b83c7d517adcep+0L, 0x1.0b5586cf9890f62ap+0L,
                                          0x1.059b0d31585743aep+0L, 0x1.02c9a3e778060ee6p+0L,
                                          0x1.0163da9fb33356d8p+0L, 0x1.00b1afa5abcbed62p+0L};
        for (int j = 0; j < root_count; ++j) {
            long double root = 1;
            for (int i = 0; i < 8; ++i)
                if (j >> (7 - i) & 1)
                    root *= halves[i];
            const double head = double(root);
            roots[j] = {head, double((root - head) / root)};
        }
    }
};
inline constexpr root_table roots_of_two{};

} // namespace vox::vm
