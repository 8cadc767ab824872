// orb_layouts.hpp - the internal layouts that primitives work on: images and the weights of convolutions, with
// channels in groups of one or two vectors.
//
// Channels are the innermost dimension. A group is 16 floats where vectors have 512 bits; elsewhere, and for
// doubles, it is 8: two vectors of four floats or doubles, one cache line of doubles.
//
//   OrbData        size0 channels of a group, width, height, groups, images
//                  [image][group][row][column][channel of the group], rows and columns with their borders
//                  of channels that are no multiple of a group: one group of all channels, four dimensions,
//                  [image][row][column][channel], with room for a power of two or for whole groups
//   OrbFilterFwd   width, height, inputs, outputs and perhaps the groups of a grouped convolution
//                  [group][row][column][output / g][input][output % g]
//   OrbFilterBwd   [group][row][column][input / g][output][input % g]
//
// For each place of its window a filter is thus a matrix that is packed as factors of a product are: forward, sums
// run over inputs and vectors along outputs, backward the other way round.
#pragma once

#include "dnn/layout.hpp"

namespace vox::dnn {

struct image_sizes {
    uint64_t width, height, channels, images, border1, border2; // borders along width and height
};

struct filter_sizes {
    uint64_t width, height, inputs, outputs, groups; // inputs and outputs of a group
};

} // namespace vox::dnn

extern "C" {
// Fill a layout for this process's code path. BAD_ARGUMENT for null, a size of 0, and what no memory can hold.
int vox_dnn_LayoutFillOrbData_F32(vox::dnn::layout *l, const vox::dnn::image_sizes *of);
int vox_dnn_LayoutFillOrbData_F64(vox::dnn::layout *l, const vox::dnn::image_sizes *of);
int vox_dnn_LayoutFillOrbFilterFwd_F32(vox::dnn::layout *l, const vox::dnn::filter_sizes *of);
int vox_dnn_LayoutFillOrbFilterFwd_F64(vox::dnn::layout *l, const vox::dnn::filter_sizes *of);
int vox_dnn_LayoutFillOrbFilterBwd_F32(vox::dnn::layout *l, const vox::dnn::filter_sizes *of);
int vox_dnn_LayoutFillOrbFilterBwd_F64(vox::dnn::layout *l, const vox::dnn::filter_sizes *of);
}

namespace {
namespace dnn {

// Channels with room for whole groups, or for a power of two where they are less than one.
inline uint64_t padded_channels(uint64_t channels, uint64_t group) {
    uint64_t room = 1;
    while (room < channels && room < group)
        room *= 2;
    return channels <= room ? room : plus(channels, (group - channels % group) % group);
}

inline bool holds_elements(const layout &l) {
    return memory_bytes(l) > 0 && memory_bytes(l) <= uint64_t(INT64_MAX);
}

template <class T>
inline int fill_orb_data(layout *l, const vox::dnn::image_sizes *of, uint64_t group) {
    if (!l || !of)
        return DNN_STATUS_BAD_ARGUMENT;
    const uint64_t width = plus(of->width, times(2, of->border1));
    const uint64_t height = plus(of->height, times(2, of->border2));
    const bool whole = of->channels % group == 0;
    const uint64_t sizes[] = {whole ? group : of->channels, width, height,
                              whole ? of->channels / group : of->images, of->images};
    const uint64_t ndims = whole ? 5 : 4;
    fill_common<T>(l, vox::dnn::orb_data, 0, ndims, sizes);
    l->border1 = of->border1;
    l->border2 = of->border2;
    l->stride[0] = 1;
    l->stride[1] = padded_channels(sizes[0], group);
    for (uint64_t i = 2; i < ndims; ++i)
        l->stride[i] = times(l->stride[i - 1], sizes[i - 1]);
    const bool any = of->width > 0 && of->height > 0 && of->channels > 0 && of->images > 0;
    return any && holds_elements(*l) ? DNN_STATUS_OK : DNN_STATUS_BAD_ARGUMENT;
}

// Of inputs and outputs, dimensions 2 and 3, `vectors` is in groups and `sums` is not.
template <class T>
inline int fill_orb_filter(layout *l, uint32_t kind, const vox::dnn::filter_sizes *of,
                           uint64_t group) {
    if (!l || !of)
        return DNN_STATUS_BAD_ARGUMENT;
    const uint64_t sizes[] = {of->width, of->height, of->inputs, of->outputs, of->groups};
    const uint64_t ndims = of->groups == 1 ? 4 : 5;
    fill_common<T>(l, kind, 0, ndims, sizes);
    const int vectors = kind == vox::dnn::orb_filter_fwd ? 3 : 2, sums = 5 - vectors;
    const uint64_t room = padded_channels(sizes[vectors], group);
    const uint64_t block = room < group ? room : group;
    l->split_dims = ndims + (block > 1);
    for (uint64_t i = 0; i < ndims; ++i)
        l->block[i] = 1;
    l->block[vectors] = block;
    l->blocked_stride[vectors] = {times(sizes[sums], block), 1};
    l->blocked_stride[sums] = {block, 1};
    l->blocked_stride[0] = {times(sizes[sums], room), 1};
    l->blocked_stride[1] = {times(l->blocked_stride[0].outer, sizes[0]), 1};
    l->blocked_stride[4] = {times(l->blocked_stride[1].outer, sizes[1]), 1};
    for (uint64_t i = 0; i < ndims; ++i)
        l->stride[i] = l->block[i] == 1 ? l->blocked_stride[i].outer : 1;
    bool any = true;
    for (const uint64_t size : sizes)
        any &= size > 0;
    return any && holds_elements(*l) ? DNN_STATUS_OK : DNN_STATUS_BAD_ARGUMENT;
}

} // namespace dnn
} // namespace
