// conversions.cpp - conversions between two layouts from a fuzzer's bytes, held to the layouts' own offset functions.
#include <vector>

#include "tests/fuzz/layouts.hpp"

namespace {

using namespace fuzz;
using vox::dnn::layout;

// Element n of the destination is element n of the source, from the first again where it has fewer. All else becomes
// 0, unless the destination is plain and the source no blocked layout.
template <class T>
void check(const layout &from, const std::vector<T> &a, const layout &to, std::vector<T> before,
           const T *after) {
    if (to.kind != vox::dnn::plain || from.kind == vox::dnn::blocked)
        before.assign(before.size(), T(0));
    const uint64_t count = dnn::element_count(to), source = dnn::element_count(from);
    for (uint64_t n = 0; n < count; ++n)
        before[to.offset(&to, n)] = a[from.offset(&from, n % source)];
    require(before.empty() || std::memcmp(before.data(), after, before.size() * sizeof(T)) == 0);
}

template <class T>
void convert(const handle &from, const handle &to) {
    using call = api<T>;
    dnnPrimitive_t p = nullptr;
    if (call::ConversionCreate(&p, from.get(), to.get()) != DNN_STATUS_OK) {
        require(!p);
        return;
    }
    const buffer<T> x(from.get()), y(to.get());
    if (x.memory && y.memory) {
        std::vector<T> a(x.bytes / sizeof(T)), b(y.bytes / sizeof(T), T(-1));
        for (size_t i = 0; i < a.size(); ++i)
            x.memory.get()[i] = a[i] = T(i + 1);
        std::copy(b.begin(), b.end(), y.memory.get());
        require(call::ConversionExecute(p, x.memory.get(), y.memory.get()) == DNN_STATUS_OK);
        check(*static_cast<const layout *>(from.get()), a, *static_cast<const layout *>(to.get()),
              b, y.memory.get());
    }
    require(call::Delete(p) == DNN_STATUS_OK);
}

template <class T>
void try_both(input &from) {
    const handle a = read<T>(any_layout<T>(from)), b = read<T>(any_layout<T>(from));
    if (!a || !b)
        return;
    convert<T>(a, b);
    convert<T>(b, a);
    convert<T>(a, a);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input from(data, size);
    from.byte() & 1 ? try_both<double>(from) : try_both<float>(from);
    return 0;
}
