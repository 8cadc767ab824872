// memory_support.hpp - what the tests of the memory manager share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <ostream>
#include <pthread.h>
#include <thread>

#include "tests/hosts/check.h" // children check with CHECK, tests with EXPECT_...
#include "tests/support/child.hpp"
#include "tests/support/tasks.hpp"
#include "vox/service.h"

namespace test {

struct held {
    int64_t bytes;
    int blocks;
    bool operator==(const held &) const = default;
    held operator-(const held &other) const { return {bytes - other.bytes, blocks - other.blocks}; }
    friend std::ostream &operator<<(std::ostream &out, const held &h) {
        return out << h.blocks << " blocks, " << h.bytes << " bytes";
    }
};

inline held held_now() {
    held h{};
    h.bytes = vox_mem_stat(&h.blocks);
    return h;
}

// What the statistics count for a block of the plain allocator: with its alignment and trailer.
inline held plain(size_t size, size_t alignment = 64) {
    return {int64_t(size + alignment + 24), 1};
}
inline held pooled(size_t size, size_t alignment = 64) { return {int64_t(size + alignment), 1}; }

inline bool is_aligned(const void *pointer, size_t alignment) {
    return reinterpret_cast<uintptr_t>(pointer) % alignment == 0;
}

// A block filled so that a byte moved, lost or overwritten by another block shows.
inline unsigned char byte_at(size_t i, unsigned seed) {
    return static_cast<unsigned char>(seed + i * 7 + (i >> 8));
}
inline void fill(void *block, size_t size, unsigned seed) {
    for (size_t i = 0; i < size; ++i)
        static_cast<unsigned char *>(block)[i] = byte_at(i, seed);
}
inline bool is_filled(const void *block, size_t size, unsigned seed) {
    size_t i = 0;
    while (i < size && static_cast<const unsigned char *>(block)[i] == byte_at(i, seed))
        ++i;
    return i == size;
}
inline bool is_zero(const void *block, size_t size) {
    const unsigned char *const bytes = static_cast<const unsigned char *>(block);
    return std::count(bytes, bytes + size, 0) == ptrdiff_t(size);
}

// One request: taken, filled, checked, released.
inline void use_scratch(size_t size, size_t alignment, unsigned seed) {
    void *const p = vox_serv_allocate(size, alignment);
    CHECK(p && is_aligned(p, alignment));
    fill(p, size, seed);
    CHECK(is_filled(p, size, seed));
    vox_serv_deallocate(p);
}

// Takes seven buffers at once, more than a pool has, growing by the step; returns how many there were.
inline int use_pool(size_t size, size_t step) {
    void *scratch[7];
    int count = 0;
    for (unsigned i = 0; i < 7; ++i) {
        scratch[i] = vox_serv_allocate(size + i * step, 64);
        count += scratch[i] != nullptr;
        if (scratch[i])
            fill(scratch[i], size, i);
    }
    for (unsigned i = 0; i < 7; ++i) {
        CHECK(!scratch[i] || is_filled(scratch[i], size, i));
        vox_serv_deallocate(scratch[i]);
    }
    return count;
}

// Runs on a thread of its own: its pool is empty at first and gone afterwards.
template <class Body>
void on_new_thread(Body body) {
    std::thread(body).join();
}

// The smallest stack that the library promises to run on. Instrumented code needs more.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr size_t small_stack = 1 << 20;
#else
inline constexpr size_t small_stack = 1 << 16;
#endif

inline pthread_t start_on_small_stack(void *(*body)(void *), void *argument) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    CHECK(pthread_attr_setstacksize(&attributes, small_stack) == 0);
    pthread_t thread;
    CHECK(pthread_create(&thread, &attributes, body, argument) == 0);
    pthread_attr_destroy(&attributes);
    return thread;
}

} // namespace test
