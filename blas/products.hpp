// products.hpp - what the drivers and kernels of level 3 are asked to do.
//
// Every routine of level 3 is a product of two factors, or a triangle times, or divided into, a
// matrix. What a stored array stands for (general, symmetric, Hermitian, triangular; transposed or
// conjugated) is a matter of how it is packed, so one description of a factor serves all routines.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox {

// packed: a buffer that a program has packed before, with its operation and scale; data is its head
// (blas/packed_operand.hpp), and there is no leading dimension.
enum class structure : uint8_t { general, symmetric, hermitian, triangular, packed };

// op(X): the array as stored, by columns, and what is to be made of it.
template <class T>
struct factor {
    const T *data;
    index_t ld;
    bool transposed = false;
    bool conjugated = false;
    // What is stored; for all between general and packed, in a triangle of the array.
    structure kind = structure::general;
    bool upper = false;
    bool unit = false; // triangular: ones on the diagonal, which is not read
};

// Which part of a result is computed; the rest of the array is not touched.
enum class region : uint8_t { all, upper, lower };

// C := alpha A B + beta C in the region, A: m x k, B: k x n after their op.
// beta = 0 overwrites C; alpha = 0 or k = 0 reads neither factor.
template <class T>
struct product {
    index_t m, n, k;
    T alpha;
    factor<T> a, b;
    T beta;
    T *c;
    index_t ldc;
    region part = region::all;
    bool real_diagonal = false; // the imaginary parts of C's diagonal are set to zero
};

// B := alpha A B or alpha B A, or the solution X of A X = alpha B or X A = alpha B, with a triangular
// factor A of order m (left) or n; B: m x n. alpha = 0 sets B to zero and does not read A.
template <class T>
struct triangle_product {
    bool left;
    index_t m, n;
    T alpha;
    factor<T> a;
    T *b;
    index_t ldb;
};

} // namespace vox
