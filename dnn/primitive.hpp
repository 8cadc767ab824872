// primitive.hpp - what every primitive begins with, and what the generic entry points ask of it.
#pragma once

#include "dnn/layout.hpp"

namespace vox::dnn {

enum primitive_kind : uint32_t { relu_kind = 10, conversion_kind = 27 };

struct primitive {
    uint32_t kind;
    uint32_t zero;
    int (*execute)(const primitive *, void *const *resources);
    void (*further[2])();                                                 // unused
    int (*layout_for)(const primitive *, dnnLayout_t *out, int resource); // hands out a copy
    int (*release)(primitive *); // frees what the primitive owns beside itself; may be null
};
static_assert(sizeof(primitive) == 48);
static_assert(offsetof(primitive, execute) == 8 && offsetof(primitive, layout_for) == 32 &&
              offsetof(primitive, release) == 40);

} // namespace vox::dnn

namespace {
namespace dnn {

using vox::dnn::primitive;

// Kinds 0 to 27 but 15 and 16; 0 to 4 are made by no create call and accepted all the same.
inline bool is_primitive(const primitive *p) {
    return p && p->kind <= 27 && p->kind != 15 && p->kind != 16;
}

} // namespace dnn
} // namespace
