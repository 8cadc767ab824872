// layouts.cpp - every operation on two layouts from a fuzzer's bytes, and ReLU on buffers of their sizes.
#include "tests/fuzz/layouts.hpp"

namespace {

using namespace fuzz;

template <class T>
void run_relu(dnnPrimitive_t p, void *x, void *dy, void *out) {
    using call = calls<T>;
    void *resources[DNN_RES_COUNT] = {x, out};
    resources[DNN_RES_DIFF_DST] = dy, resources[DNN_RES_DIFF_SRC] = out;
    if (x && dy && out)
        require(call::execute(p, resources) == DNN_STATUS_OK);
    dnnLayout_t copy = nullptr;
    require(call::layout_of(&copy, p, DNN_RES_SRC) == DNN_STATUS_OK);
    vox_serv_free(copy);
    require(call::remove(p) == DNN_STATUS_OK);
}

template <class T>
void try_all(input &from) {
    using call = calls<T>;
    const handle a = read<T>(any_layout<T>(from)), b = read<T>(any_layout<T>(from));
    if (!a || !b)
        return;
    require(call::compare(a.get(), a.get()) == 1);
    require(call::compare(a.get(), b.get()) == call::compare(b.get(), a.get()));
    unsigned char image[vox::dnn::serialized_bytes];
    require(call::serialize(a.get(), image) == DNN_STATUS_OK);
    dnnLayout_t again = nullptr;
    require(call::deserialize(&again, image) == DNN_STATUS_OK);
    require(call::compare(a.get(), again) == 1);
    vox_serv_free(again);

    const buffer<T> x(a.get()), y(a.get()), dy(b.get()), dx(b.get());
    if (x.memory) {
        void *memory = nullptr;
        call::allocate(&memory, a.get());
        if (memory)
            std::memset(memory, 0, x.bytes);
        call::release(memory);
    }
    dnnPrimitive_t p = nullptr;
    if (call::relu_forward(&p, nullptr, a.get(), T(0.5)) == DNN_STATUS_OK)
        run_relu<T>(p, x.memory.get(), x.memory.get(), y.memory.get());
    if (call::relu_backward(&p, nullptr, b.get(), a.get(), T(0.5)) == DNN_STATUS_OK)
        run_relu<T>(p, x.memory.get(), dy.memory.get(), dx.memory.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input from(data, size);
    from.byte() & 1 ? try_all<double>(from) : try_all<float>(from);
    return 0;
}
