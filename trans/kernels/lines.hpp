// lines.hpp - when stores of whole cache lines past the caches pay.
#pragma once

#include "trans/kernels/tile.hpp"

namespace {
namespace trans {

// Whether a result is written past the caches.
template <class T>
VOX_INLINE bool streams(index_t outer, index_t inner) {
    return double(outer) * double(inner) * double(sizeof(T)) >= double(streamed_bytes);
}

} // namespace trans
} // namespace
