// api.hpp - the routines by precision, api<float>::LayoutCreate, and the bytes of a stored layout.
#pragma once

#include <array>
#include <cstring>

#include "dnn/entries.hpp"
#include "dnn/layout.hpp"

namespace test {

template <class T>
struct api;
#define VOX_TEST_CALL(P, T, name, result, parameters, arguments)                                   \
    static constexpr auto name = dnn##name##_##P;
#define VOX_TEST_CALLS(P, T)                                                                       \
    template <>                                                                                    \
    struct api<T> {                                                                                \
        VOX_DNN_ENTRIES(VOX_TEST_CALL, P, T)                                                       \
    };
VOX_DNN_PRECISIONS(VOX_TEST_CALLS)

// What the library makes of a record, as if it came from elsewhere.
template <class T>
int read(const vox::dnn::layout &l, dnnLayout_t *out) {
    std::array<unsigned char, vox::dnn::serialized_bytes> bytes;
    std::memcpy(bytes.data(), &vox::dnn::image_size, 4);
    std::memcpy(bytes.data() + 4, &l, sizeof l);
    return api<T>::LayoutDeserialize(out, bytes.data());
}

} // namespace test
