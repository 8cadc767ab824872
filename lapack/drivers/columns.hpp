// columns.hpp - the part of a matrix that a routine works on, as a list of columns: rows [begin, end) of
// each, begin <= end.
#pragma once

#include "lapack/extremes.hpp"

namespace vox::lapack {

struct span {
    index_t begin, end;

    index_t length() const { return end - begin; }
};

// Column j of an m x n matrix: all of it, or its part in the triangle that begins at the diagonal or,
// with off = 1, beside it.
inline span column_of(char uplo, index_t m, index_t j, index_t off = 0) {
    if (uplo == 'U')
        return {0, least(m, j + 1 - off)};
    if (uplo == 'L')
        return {least(m, j + off), m};
    return {0, m};
}

} // namespace vox::lapack
