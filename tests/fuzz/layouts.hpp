// layouts.hpp - layouts from a fuzzer's bytes: some sound, some nearly so, some anything.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "dnn/layout.hpp"
#include "tests/dnn/api.hpp"

namespace fuzz {

using test::api;

// What was expected does not hold.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

class input {
  public:
    input(const uint8_t *data, size_t size) : at_(data), end_(data + size) {}

    uint8_t byte() { return at_ < end_ ? *at_++ : 0; }

    // Mostly small; sometimes at an edge of what 64 bits hold.
    uint64_t number(unsigned range) {
        static constexpr uint64_t edges[] = {0,          1,          31,         32,
                                             33,         1ull << 31, 1ull << 32, 1ull << 62,
                                             1ull << 63, INT64_MAX,  ~0ull,      ~0ull - 7};
        const unsigned b = byte();
        return b < 244 ? b % range : edges[b - 244];
    }

  private:
    const uint8_t *at_, *end_;
};

// The first byte says which parts are made to fit each other.
template <class T>
vox::dnn::layout any_layout(input &from) {
    vox::dnn::layout l;
    std::memset(&l, 0, sizeof l);
    const uint8_t sound = from.byte();
    l.kind = from.byte() % 16 == 15 ? 5 : from.byte() % 5;
    l.flags = from.byte() == 255;
    l.ndims = sound & 1 ? 4 + (sound >> 1 & 1) : from.number(7);
    l.elem_size = from.byte() == 255 ? from.number(9) : sizeof(T);
    uint64_t dense = 1, places = 1;
    for (uint64_t i = 0; i < vox::dnn::max_dims && (i < l.ndims || i < 5); ++i) {
        l.size[i] = sound & 4 ? 1 + from.byte() % 18 : from.number(18);
        l.stride[i] = sound & 8 ? dense : from.number(40);
        dense *= l.size[i] + (sound & 16 ? from.byte() % 3 : 0);
        const uint64_t block = sound & 4 ? uint64_t(1) << (from.byte() % 5) : from.number(9);
        l.block[i] = block;
        const bool tiled = (sound & 32) && block != 0;
        l.blocked_stride[i].inner = tiled ? places : from.number(40);
        places *= tiled ? block : 1;
        l.blocked_stride[i].outer = tiled ? places : from.number(400);
        places *= tiled ? (l.size[i] + block - 1) / block : 1;
    }
    if (l.kind == vox::dnn::blocked) {
        l.split_dims = from.number(9);
        l.base_offset = sound & 64 ? 0 : from.number(9);
    } else {
        l.border1 = sound & 64 ? 0 : from.number(4);
        if (l.kind == vox::dnn::orb_data)
            l.border2 = sound & 64 ? 0 : from.number(4);
    }
    return l;
}

// The layout as the library reads it; null if it has no such kind.
struct freed {
    void operator()(void *p) const { vox_serv_free(p); }
};
using handle = std::unique_ptr<void, freed>;

template <class T>
handle read(const vox::dnn::layout &l) {
    dnnLayout_t out = nullptr;
    const int status = test::read<T>(l, &out);
    require((status == 0) == (l.kind <= 4) && (status == 0) == (out != nullptr));
    return handle(out);
}

// A buffer of exactly its layout's bytes, so that a byte beyond is found. None for what takes too long.
template <class T>
struct buffer {
    explicit buffer(dnnLayout_t of) : bytes(api<T>::LayoutGetMemorySize(of)) {
        if (bytes <= 1 << 18)
            memory.reset(static_cast<T *>(std::calloc(1, bytes)));
    }
    struct release {
        void operator()(T *p) const { std::free(p); }
    };
    size_t bytes;
    std::unique_ptr<T, release> memory;
};

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
