// integer_products.hpp - what the kernels of integer products are asked to do.
#pragma once

#include "serv/base.hpp"

namespace vox {

enum class integer_type : uint8_t { s8, u8, s16 };

// op(X) + offset, element by element.
struct integer_factor {
    const void *data;
    index_t ld;
    bool transposed;
    integer_type type;
    int offset;
};

// C := alpha A B + beta C + co, A: m x k, B: k x n after their op; co: one number, a column of m or a row
// of n. Any type may stand on either side.
struct integer_product {
    index_t m, n, k;
    float alpha;
    integer_factor a, b;
    float beta;
    int32_t *c;
    index_t ldc;
    const int32_t *co;
    enum offset_kind : uint8_t { fixed, column, row } offset;
};

} // namespace vox
