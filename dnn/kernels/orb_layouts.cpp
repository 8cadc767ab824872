// orb_layouts.cpp - the internal layouts of a code path: groups as its vectors suggest.
#include "dnn/orb_layouts.hpp"

#include "serv/simd.hpp"

namespace {
namespace dnn {

template <class T>
constexpr uint64_t group = sizeof(T) == 4 && simd::vector_bytes == 64 ? 16 : 8;

} // namespace dnn
} // namespace

#define FILLS(P, T)                                                                                \
    extern "C" int VOX_KERNEL_NAMED(dnn, LayoutFillOrbData_##P)(vox::dnn::layout * l,              \
                                                                const vox::dnn::image_sizes *of) { \
        return dnn::fill_orb_data<T>(l, of, dnn::group<T>);                                        \
    }                                                                                              \
    extern "C" int VOX_KERNEL_NAMED(dnn, LayoutFillOrbFilterFwd_##P)(                              \
        vox::dnn::layout * l, const vox::dnn::filter_sizes *of) {                                  \
        return dnn::fill_orb_filter<T>(l, vox::dnn::orb_filter_fwd, of, dnn::group<T>);            \
    }                                                                                              \
    extern "C" int VOX_KERNEL_NAMED(dnn, LayoutFillOrbFilterBwd_##P)(                              \
        vox::dnn::layout * l, const vox::dnn::filter_sizes *of) {                                  \
        return dnn::fill_orb_filter<T>(l, vox::dnn::orb_filter_bwd, of, dnn::group<T>);            \
    }
FILLS(F32, float)
FILLS(F64, double)
