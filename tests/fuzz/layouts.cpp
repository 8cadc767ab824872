// layouts.cpp - every operation on two layouts from a fuzzer's bytes, and ReLU on buffers of their sizes.
#include "tests/fuzz/layouts.hpp"

namespace {

using namespace fuzz;

template <class T>
void run_relu(dnnPrimitive_t p, void *x, void *dy, void *out) {
    using call = api<T>;
    void *resources[DNN_RES_COUNT] = {x, out};
    resources[DNN_RES_DIFF_DST] = dy, resources[DNN_RES_DIFF_SRC] = out;
    if (x && dy && out)
        require(call::Execute(p, resources) == DNN_STATUS_OK);
    dnnLayout_t copy = nullptr;
    require(call::LayoutCreateFromPrimitive(&copy, p, DNN_RES_SRC) == DNN_STATUS_OK);
    vox_serv_free(copy);
    require(call::Delete(p) == DNN_STATUS_OK);
}

template <class T>
void try_all(input &from) {
    using call = api<T>;
    const handle a = read<T>(any_layout<T>(from)), b = read<T>(any_layout<T>(from));
    if (!a || !b)
        return;
    require(call::LayoutCompare(a.get(), a.get()) == 1);
    require(call::LayoutCompare(a.get(), b.get()) == call::LayoutCompare(b.get(), a.get()));
    unsigned char image[vox::dnn::serialized_bytes];
    require(call::LayoutSerialize(a.get(), image) == DNN_STATUS_OK);
    dnnLayout_t again = nullptr;
    require(call::LayoutDeserialize(&again, image) == DNN_STATUS_OK);
    require(call::LayoutCompare(a.get(), again) == 1);
    vox_serv_free(again);

    const buffer<T> x(a.get()), y(a.get()), dy(b.get()), dx(b.get());
    if (x.memory) {
        void *memory = nullptr;
        call::AllocateBuffer(&memory, a.get());
        if (memory)
            std::memset(memory, 0, x.bytes);
        call::ReleaseBuffer(memory);
    }
    dnnPrimitive_t p = nullptr;
    if (call::ReLUCreateForward(&p, nullptr, a.get(), T(0.5)) == DNN_STATUS_OK)
        run_relu<T>(p, x.memory.get(), x.memory.get(), y.memory.get());
    if (call::ReLUCreateBackward(&p, nullptr, b.get(), a.get(), T(0.5)) == DNN_STATUS_OK)
        run_relu<T>(p, x.memory.get(), dy.memory.get(), dx.memory.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input from(data, size);
    from.byte() & 1 ? try_all<double>(from) : try_all<float>(from);
    return 0;
}
