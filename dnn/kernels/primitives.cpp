// primitives.cpp - the operations that all primitives share. They know a primitive by its header.
#include "dnn/entries.hpp"
#include "dnn/primitive.hpp"
#include "serv/kernel.hpp"

namespace {
namespace dnn {

template <class T>
int LayoutCreateFromPrimitive(dnnLayout_t *out, dnnPrimitive_t of, int resource) {
    const auto *const p = static_cast<const primitive *>(of);
    if (!out || !is_primitive(p) || !p->layout_for)
        return DNN_STATUS_BAD_ARGUMENT;
    return p->layout_for(p, out, resource);
}

template <class T>
int Execute(dnnPrimitive_t of, void *resources[]) {
    const auto *const p = static_cast<const primitive *>(of);
    if (!resources || !is_primitive(p) || !p->execute)
        return DNN_STATUS_BAD_ARGUMENT;
    return p->execute(p, resources);
}

template <class T>
int ExecuteAsync(dnnPrimitive_t of, void **) {
    return is_primitive(static_cast<const primitive *>(of)) ? DNN_STATUS_NOT_IMPLEMENTED
                                                            : DNN_STATUS_BAD_ARGUMENT;
}

template <class T>
int WaitFor(dnnPrimitive_t of) {
    return ExecuteAsync<T>(of, nullptr);
}

template <class T>
int Delete(dnnPrimitive_t of) {
    auto *const p = static_cast<primitive *>(of);
    if (!is_primitive(p))
        return DNN_STATUS_BAD_ARGUMENT;
    if (p->release)
        p->release(p);
    vox_serv_free(p);
    return DNN_STATUS_OK;
}

template <class T>
int PrimitiveAttributesCreate(dnnPrimitiveAttributes_t *out) {
    return out ? DNN_STATUS_OK : DNN_STATUS_BAD_ARGUMENT;
}

template <class T>
int PrimitiveGetAttributes(dnnPrimitive_t of, dnnPrimitiveAttributes_t *out) {
    return of && out ? DNN_STATUS_OK : DNN_STATUS_BAD_ARGUMENT;
}

template <class T>
int PrimitiveAttributesDestroy(dnnPrimitiveAttributes_t of) {
    vox_serv_free(of);
    return DNN_STATUS_OK;
}

} // namespace dnn
} // namespace

VOX_DNN_KERNELS(VOX_DNN_PRIMITIVE_ENTRIES)
