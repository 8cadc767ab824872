// pool_test.cpp - the pooled allocator as one thread sees it: which buffer a request gets, what is
// kept and when it is released.
#include "tests/serv/memory_support.hpp"

#include <string>
#include <vector>

#include "serv/scratch.hpp"

namespace {

using namespace test;

constexpr size_t limit = 0x8000000; // what the pool takes at most

// A pool is set up with idle buffers of the given sizes, in this order, and asked for one more.
// Alignment is 64 throughout, so capacities compare as sizes do.
TEST(Pool, TheBestFittingBufferIsTaken) {
    const struct {
        const char *what;
        std::vector<size_t> idle;
        size_t request;
        int chosen; // index of the idle buffer, -1: a new one beside them
        held growth;
    } cases[] = {
        {"equal, before a smaller one that is larger", {500, 900, 700}, 700, 2, {0, 0}},
        {"the smallest of the larger ones", {2000, 900, 1500, 100}, 800, 1, {0, 0}},
        {"the first on ties", {2000, 900, 900}, 800, 1, {0, 0}},
        {"new while there are fewer than five", {100, 200, 300}, 400, -1, pooled(400)},
        {"in place of the first that is too small", {100, 200, 300, 400, 50}, 1000, -1, {900, 0}},
        {"larger before new", {100, 5000}, 200, 1, {0, 0}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        on_new_thread([&] {
            std::vector<void *> idle;
            for (size_t size : c.idle)
                idle.push_back(vox_serv_allocate(size, 64));
            for (void *buffer : idle)
                vox_serv_deallocate(buffer);
            const held before = held_now();
            void *const got = vox_serv_allocate(c.request, 64);
            ASSERT_TRUE(got);
            fill(got, c.request, 1);
            EXPECT_EQ(held_now() - before, c.growth);
            if (c.chosen >= 0) {
                EXPECT_EQ(got, idle[size_t(c.chosen)]);
            }
            vox_serv_deallocate(got);
        });
    }
}

TEST(Pool, ALargerBufferIsAlignedAnew) {
    on_new_thread([] {
        vox_serv_deallocate(vox_serv_allocate(10000, 64));
        const held before = held_now();
        for (size_t alignment : {4096, 128, 64, 2048}) {
            void *const p = vox_serv_allocate(5000, alignment);
            EXPECT_TRUE(is_aligned(p, alignment));
            fill(p, 5000, 1);
            EXPECT_EQ(held_now(), before);
            vox_serv_deallocate(p);
        }
    });
}

TEST(Pool, TheSixthAtATimeAndTheLargeAreNotKept) {
    on_new_thread([] {
        const held before = held_now();
        void *buffers[6];
        for (void *&buffer : buffers) {
            buffer = vox_serv_allocate(1000, 128);
            fill(buffer, 1000, unsigned(&buffer - buffers));
        }
        EXPECT_EQ(held_now() - before,
                  (held{5 * pooled(1000, 128).bytes + plain(1000, 128).bytes, 6}));
        for (void *&buffer : buffers) {
            EXPECT_TRUE(is_filled(buffer, 1000, unsigned(&buffer - buffers)));
            vox_serv_deallocate(buffer);
        }
        EXPECT_EQ(held_now() - before, (held{5 * pooled(1000, 128).bytes, 5}));
        vox_thread_free_buffers();

        void *const largest = vox_serv_allocate(limit, 64);
        void *const too_large = vox_serv_allocate(limit + 1, 64);
        EXPECT_EQ(held_now() - before, (held{pooled(limit).bytes + plain(limit + 1).bytes, 2}));
        vox_serv_deallocate(too_large);
        vox_serv_deallocate(largest);
        EXPECT_EQ(held_now() - before, pooled(limit));
    });
}

TEST(Pool, BuffersInUseSurviveTheReleaseOfAll) {
    on_new_thread([] {
        const held before = held_now();
        void *const used = vox_serv_allocate(1000, 64), *const idle = vox_serv_allocate(2000, 64);
        vox_serv_deallocate(idle);
        fill(used, 1000, 1);
        on_new_thread(vox_free_buffers);
        EXPECT_EQ(held_now() - before, pooled(1000));
        vox_thread_free_buffers();
        EXPECT_EQ(held_now() - before, pooled(1000));
        EXPECT_TRUE(is_filled(used, 1000, 1));
        vox_serv_deallocate(used);
        EXPECT_EQ(vox_serv_allocate(1000, 64), used);
        vox_serv_deallocate(used);
        vox_free_buffers();
        EXPECT_EQ(held_now(), before);
    });
}

TEST(Pool, EndsWithItsThread) {
    const held before = held_now();
    on_new_thread([] {
        vox_serv_deallocate(vox_serv_allocate(1000, 64));
        (void)vox_serv_allocate(2000, 64); // even what the thread never released
    });
    EXPECT_EQ(held_now(), before);
}

TEST(Scratch, SaysWhenItIsEmpty) {
    const held before = held_now();
    {
        vox::scratch<double> s(1000, 128);
        ASSERT_FALSE(s.empty());
        EXPECT_TRUE(is_aligned(s.data(), 128));
        s[0] = s[999] = 1;
        const vox::scratch<double> next(1000);
        EXPECT_TRUE(is_aligned(next.data(), 64));
        EXPECT_NE(next.data(), s.data());
    }
    vox_thread_free_buffers();
    EXPECT_EQ(held_now(), before);
    for (int64_t count : {int64_t(0), int64_t(-1), INT64_MIN, INT64_MAX, int64_t(1) << 61})
        EXPECT_TRUE(vox::scratch<double>(count).empty()) << count;
    EXPECT_EQ(held_now(), before);
}

// Pool off.

CHILD(off) {
    void *const p = vox_serv_allocate(1000, 64);
    CHECK(p && (held_now() == plain(1000)));
    vox_serv_deallocate(p);
    CHECK((held_now() == held{0, 0}));
    std::printf("%d", vox_serv_get_fast_mm_status());
}
CHILD_TEST(Pool, CanBeTurnedOff) {
    CHECK(vox_serv_get_fast_mm_status() == 0);
    void *const early = vox_serv_allocate(1000, 64);
    CHECK(vox_disable_fast_mm() == 1 && vox_serv_get_fast_mm_status() == 1);
    CHECK(vox_disable_fast_mm() == 1);
    void *const late = vox_serv_allocate(2000, 64);
    CHECK((held_now() - pooled(1000) == plain(2000)));
    vox_serv_deallocate(late);
    vox_serv_deallocate(early);
    CHECK((held_now() == pooled(1000))); // until the buffers are released
    vox_free_buffers();
    CHECK((held_now() == held{0, 0}));
}

TEST(Pool, IsOffWhenTheVariableIsSetToAnything) {
    const std::vector<std::string> values = {"", "0", "no", std::string(31, ' '),
                                             std::string(100000, 'x')};
    expect_said(off, "VOX_DISABLE_FAST_MM", values, "1");
}

} // namespace
