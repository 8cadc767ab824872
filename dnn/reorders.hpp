// reorders.hpp - the pairs of layouts that the reorders are for: weights and images in blocks of 8 or 16 channels, as
// the exact products of sizes that their strides are.
//
// Weights have dimensions width, height, inputs, outputs and perhaps groups, images width, height, channels, images.
#pragma once

#include "dnn/conversion.hpp"

namespace {
namespace dnn {

using vox::dnn::reorder;

inline bool has_strides(const layout &l, int i, uint64_t outer, uint64_t inner) {
    return l.blocked_stride[i].outer == outer &&
           (l.block[i] == 1 || l.blocked_stride[i].inner == inner);
}

// [group][output / b][input / b][row][column], then b inputs of b outputs each: 8i8o. With `inputs_last` the other
// way round.
inline bool is_weights(const layout &l, uint64_t b, bool inputs_last) {
    if (l.kind != vox::dnn::blocked || (l.ndims != 4 && l.ndims != 5) || l.base_offset != 0 ||
        l.block[0] != 1 || l.block[1] != 1 || l.block[2] != b || l.block[3] != b ||
        l.size[2] % b != 0 || l.size[3] % b != 0)
        return false;
    const uint64_t rows = times(b * b, l.size[0]), inputs = times(rows, l.size[1]);
    const uint64_t outputs = times(inputs, l.size[2] / b), groups = times(outputs, l.size[3] / b);
    return has_strides(l, 0, b * b, 0) && has_strides(l, 1, rows, 0) &&
           has_strides(l, 2, inputs, inputs_last ? 1 : b) &&
           has_strides(l, 3, outputs, inputs_last ? b : 1) &&
           (l.ndims == 4 || (l.block[4] == 1 && has_strides(l, 4, groups, 0)));
}

// [image][channel / b][row][column][channel % b]
inline bool is_image(const layout &l, uint64_t b) {
    if (l.kind != vox::dnn::blocked || l.ndims != 4 || l.base_offset != 0 || l.block[0] != 1 ||
        l.block[1] != 1 || l.block[2] != b || l.block[3] != 1)
        return false;
    const uint64_t rows = times(b, l.size[0]), groups = times(rows, l.size[1]);
    return has_strides(l, 0, b, 0) && has_strides(l, 1, rows, 0) && has_strides(l, 2, groups, 1) &&
           has_strides(l, 3, times(groups, l.size[2] / b + (l.size[2] % b != 0)), 0);
}

inline bool is_plain(const layout &l) { return l.kind == vox::dnn::plain; }

inline bool is_exchange(const layout &from, const layout &to, uint64_t b) {
    return (is_weights(from, b, false) && is_weights(to, b, true)) ||
           (is_weights(from, b, true) && is_weights(to, b, false));
}

inline bool is_for(reorder which, const layout &from, const layout &to) {
    if (from.ndims != to.ndims || !equal_words(from.size, to.size, from.ndims))
        return false;
    switch (which) {
    case reorder::Simple_To_Weights8i8o:
        return is_plain(from) && is_weights(to, 8, false);
    case reorder::Simple_To_Weights8o8i:
        return is_plain(from) && is_weights(to, 8, true);
    case reorder::Simple_To_Weights16i16o:
        return is_plain(from) && is_weights(to, 16, false);
    case reorder::Simple_To_Weights16o16i:
        return is_plain(from) && is_weights(to, 16, true);
    case reorder::Weights8_To_Simple:
        return (is_weights(from, 8, false) || is_weights(from, 8, true)) && is_plain(to);
    case reorder::Weights16_To_Simple:
        return (is_weights(from, 16, false) || is_weights(from, 16, true)) && is_plain(to);
    case reorder::Simple_To_Image8:
        return is_plain(from) && is_image(to, 8);
    case reorder::Simple_To_Image16:
        return is_plain(from) && is_image(to, 16);
    case reorder::Image8_To_Simple:
        return is_image(from, 8) && is_plain(to);
    case reorder::Image16_To_Simple:
        return is_image(from, 16) && is_plain(to);
    case reorder::Weights_Exchanged:
        return is_exchange(from, to, 8) || is_exchange(from, to, 16);
    }
    return false;
}

} // namespace dnn
} // namespace
