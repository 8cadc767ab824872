// conversion.cpp - conversions: the primitive, its choice of a routine, and the routines.
#include "dnn/entries.hpp"
#include "dnn/kernels/copy.hpp"
#include "dnn/reorders.hpp"

namespace {
namespace dnn {

using vox::dnn::routine;

// Internal layouts are complete: borders and the room behind channels are zeros, which kernels rely on. A plain
// layout may be a part of something larger, which is left as it is.
template <class T>
int copy(const conversion *c, const void *from, void *to, bool clear) {
    copying<T>(*c, from, to).run(clear);
    return DNN_STATUS_OK;
}

template <class T>
int reordered(reorder which, const conversion *c, const void *from, void *to) {
    if (!from && !to)
        return is_for(which, c->from, c->to) ? DNN_STATUS_OK : DNN_STATUS_NOT_IMPLEMENTED;
    return copy<T>(c, from, to, true);
}

} // namespace dnn
} // namespace

#define COPY(P, T, name)                                                                           \
    extern "C" int VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P)(const vox::dnn::conversion *c, \
                                                                    const void *from, void *to) {  \
        return dnn::copy<T>(c, from, to, c->to.kind != vox::dnn::plain);                           \
    }
#define REORDER(P, T, name)                                                                        \
    extern "C" int VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P)(const vox::dnn::conversion *c, \
                                                                    const void *from, void *to) {  \
        return dnn::reordered<T>(vox::dnn::reorder::name, c, from, to);                            \
    }
#define GENERIC(P, T)                                                                              \
    extern "C" int VOX_KERNEL_NAMED(dnn, doConversion_Generic_##P)(const vox::dnn::conversion *c,  \
                                                                   const void *from, void *to) {   \
        return dnn::copy<T>(c, from, to, true);                                                    \
    }
#define ROUTINES(P, T)                                                                             \
    VOX_DNN_COPIES(COPY, P, T)                                                                     \
    VOX_DNN_REORDERS(REORDER, P, T)                                                                \
    GENERIC(P, T)
VOX_DNN_PRECISIONS(ROUTINES)

namespace {
namespace dnn {

// The routine of a pair of kinds; those of pairs that are not listed are asked one after the other.
#define LISTED(P, T, name)                                                                         \
    case vox::dnn::copy::name:                                                                     \
        return VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P);
#define ASKED(P, T, name)                                                                          \
    if (VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P)(&c, nullptr, nullptr) == DNN_STATUS_OK)   \
        return VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P);
#define NAMED(P, T, name)                                                                          \
    if (of == VOX_KERNEL_NAMED(dnn, doConversion_##name##_##P))                                    \
        return #name;
#define CHOICE(P, T)                                                                               \
    inline routine *chosen(const conversion &c, T) {                                               \
        vox::dnn::copy which;                                                                      \
        if (is_listed(c.from.kind, c.to.kind, which))                                              \
            switch (which) { VOX_DNN_COPIES(LISTED, P, T) }                                        \
        VOX_DNN_REORDERS(ASKED, P, T)                                                              \
        return VOX_KERNEL_NAMED(dnn, doConversion_Generic_##P);                                    \
    }                                                                                              \
    inline const char *name_of(routine *of, T) {                                                   \
        VOX_DNN_COPIES(NAMED, P, T)                                                                \
        VOX_DNN_REORDERS(NAMED, P, T)                                                              \
        return "Generic";                                                                          \
    }

inline bool is_listed(uint32_t from, uint32_t to, vox::dnn::copy &which) {
    using namespace vox::dnn;
    using vox::dnn::copy;
    const auto is = [&](uint32_t a, uint32_t b, copy c) {
        which = c;
        return from == a && to == b;
    };
    return is(plain, plain, copy::Simple_To_Simple) ||
           is(plain, orb_data, copy::Simple_To_OrbData) ||
           is(plain, orb_filter_fwd, copy::Simple_To_OrbFilterFwd) ||
           is(plain, orb_filter_bwd, copy::Simple_To_OrbFilterBwd) ||
           is(orb_data, plain, copy::OrbData_To_Simple) ||
           is(orb_filter_fwd, plain, copy::OrbFilterFwd_To_Simple) ||
           is(orb_filter_bwd, plain, copy::OrbFilterBwd_To_Simple) ||
           is(orb_data, orb_data, copy::OrbData_To_OrbData) ||
           is(orb_filter_fwd, orb_filter_bwd, copy::OrbFilterFwd_To_OrbFilterBwd) ||
           is(orb_filter_bwd, orb_filter_fwd, copy::OrbFilterBwd_To_OrbFilterFwd);
}
VOX_DNN_PRECISIONS(CHOICE)

// Sizes that a source and a destination of one kind have in common.
inline bool is_large_enough(const layout &from, const layout &to) {
    if (from.kind != to.kind)
        return true;
    if (from.ndims != to.ndims)
        return false;
    for (uint64_t i = 0; i < from.ndims; ++i) {
        const bool bordered = from.kind == vox::dnn::orb_data && (i == 1 || i == 2);
        const auto size = [=](const layout &l) {
            return bordered ? inside(l.size[i], i == 1 ? l.border1 : l.border2) : l.size[i];
        };
        if (size(to) < size(from))
            return false;
    }
    return true;
}

// Whether all elements lie in their buffers, and there is something to copy from.
template <class T>
bool can_be_walked(const layout &from, const layout &to) {
    const uint64_t from_count = element_count(from), to_count = element_count(to);
    return vox::dnn::has_axes(from) && vox::dnn::has_axes(to) &&
           from_count <= uint64_t(INT64_MAX) && fits<T>(from, from_count) && takes<T>(to) &&
           (from_count > 0 || to_count == 0);
}

inline int execute(const primitive *p, void *const *resources) {
    const auto *const c = reinterpret_cast<const conversion *>(p);
    const void *const from = resources[DNN_RES_SRC];
    void *const to = resources[DNN_RES_DST];
    return from && to ? c->copy(c, from, to) : DNN_STATUS_BAD_ARGUMENT;
}

inline int layout_for(const primitive *p, dnnLayout_t *out, int resource) {
    const auto *const c = reinterpret_cast<const conversion *>(p);
    switch (resource) {
    case DNN_RES_SRC:
        return hand_out(out, c->from);
    case DNN_RES_DST:
        return hand_out(out, c->to);
    }
    return DNN_STATUS_BAD_ARGUMENT;
}

template <class T>
int ConversionCreate(dnnPrimitive_t *out, dnnLayout_t source, dnnLayout_t destination) {
    const auto *const from = static_cast<const layout *>(source);
    const auto *const to = static_cast<const layout *>(destination);
    if (!out || !from || !to)
        return DNN_STATUS_BAD_ARGUMENT;
    if (from->flags != 0 || to->flags != 0)
        return DNN_STATUS_NOT_IMPLEMENTED;
    if (from->ndims < 1 || from->ndims > vox::dnn::max_dims || to->ndims < 1 ||
        to->ndims > vox::dnn::max_dims || !is_large_enough(*from, *to) ||
        !can_be_walked<T>(*from, *to))
        return DNN_STATUS_BAD_ARGUMENT;
    auto *const c = allocate<conversion>();
    if (!c)
        return DNN_STATUS_NO_MEMORY;
    c->head = {vox::dnn::conversion_kind, 0, execute, {}, layout_for, nullptr};
    c->from = *from;
    c->to = *to;
    c->copy = chosen(*c, T());
    vox_dnn_getNThreads_F32(); // settled now, if it has not been
    *out = c;
    return DNN_STATUS_OK;
}

template <class T>
int ConversionExecute(dnnPrimitive_t of, const void *from, void *to);
#define EXECUTE(P, T)                                                                              \
    extern "C" int VOX_KERNEL_NAMED(dnn, Execute_##P)(dnnPrimitive_t, void **);                    \
    template <>                                                                                    \
    int ConversionExecute<T>(dnnPrimitive_t of, const void *from, void *to) {                      \
        void *resources[DNN_RES_COUNT] = {};                                                       \
        resources[DNN_RES_SRC] = const_cast<void *>(from);                                         \
        resources[DNN_RES_DST] = to;                                                               \
        return VOX_KERNEL_NAMED(dnn, Execute_##P)(of, resources);                                  \
    }
VOX_DNN_PRECISIONS(EXECUTE)

} // namespace dnn
} // namespace

VOX_DNN_KERNELS(VOX_DNN_CONVERSION_ENTRIES)

#define ROUTINE_NAME(P, T)                                                                         \
    extern "C" const char *VOX_KERNEL_NAMED(dnn, ConversionRoutine_##P)(                           \
        const vox::dnn::conversion *of) {                                                          \
        return dnn::name_of(of->copy, T());                                                        \
    }
VOX_DNN_PRECISIONS(ROUTINE_NAME)
