// memory_test.cpp - the plain allocator, its statistics, the hooks and the settings.
#include "tests/serv/memory_support.hpp"

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

// Too large a request is null under the sanitizers, too.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char *__tsan_default_options() { return "allocator_may_return_null=1"; }

namespace {

using namespace test;

constexpr size_t largest = SIZE_MAX;

TEST(Memory, AlignsAndCountsEveryBlock) {
    const struct {
        size_t size, asked, alignment;
    } cases[] = {{1, 64, 64},      {100, 0, 64},      {100, 3, 64},       {100, 16, 64},
                 {100, 96, 64},    {100, 128, 128},   {4096, 4096, 4096}, {5000, 1 << 20, 1 << 20},
                 {1 << 20, 1, 64}, {7, 1 << 12, 4096}};
    for (const auto &[size, asked, alignment] : cases) {
        SCOPED_TRACE(testing::Message() << size << " bytes, alignment " << asked);
        const held before = held_now();
        void *const made = vox_malloc(size, asked), *const zeroed = vox_calloc(size, 1, asked);
        ASSERT_TRUE(made && zeroed);
        EXPECT_TRUE(is_aligned(made, alignment) && is_aligned(zeroed, alignment));
        EXPECT_TRUE(is_zero(zeroed, size));
        fill(made, size, 1);
        fill(zeroed, size, 2);
        EXPECT_TRUE(is_filled(made, size, 1));
        EXPECT_EQ(held_now() - before, (held{2 * plain(size, alignment).bytes, 2}));
        vox_free(made);
        vox_free(zeroed);
        EXPECT_EQ(held_now(), before);
    }
}

TEST(Memory, NothingForNothingAndNothingForTooMuch) {
    const held before = held_now();
    const struct {
        size_t size, alignment;
    } cases[] = {{0, 64},
                 {largest, 64},
                 {largest - 64 - 24, 64},     // the last size whose total does not wrap
                 {largest - 64 - 24 + 1, 64}, // the first whose total does
                 {largest - 64 - 24 - 32, 64},
                 {largest - 64, 3},
                 {largest / 2, 64},
                 {1, size_t(1) << 32}, // more than the block's record of it holds
                 {1, size_t(1) << 63}};
    for (const auto &[size, alignment] : cases) {
        SCOPED_TRACE(testing::Message() << size << " bytes, alignment " << alignment);
        EXPECT_EQ(vox_malloc(size, alignment), nullptr);
        EXPECT_EQ(vox_calloc(size, 1, alignment), nullptr);
        EXPECT_EQ(vox_serv_allocate(size, alignment), nullptr);
    }
    EXPECT_EQ(vox_calloc(largest / 8 + 1, 8, 64), nullptr);
    EXPECT_EQ(vox_calloc(size_t(1) << 32, size_t(1) << 32, 64), nullptr);
    EXPECT_EQ(vox_calloc(0, 8, 64), nullptr);
    vox_free(nullptr);
    vox_serv_deallocate(nullptr);
    EXPECT_EQ(held_now(), before);
}

TEST(Memory, ResizingKeepsContentsAndAlignment) {
    // Sizes on both sides of what the C library maps on its own, so that bases move and offsets
    // change.
    const size_t sizes[] = {1, 100, 4000, 200000, 3 << 20};
    for (size_t alignment : {64, 128, 4096, 1 << 16})
        for (size_t from : sizes)
            for (size_t to : sizes) {
                SCOPED_TRACE(testing::Message() << from << " to " << to << " at " << alignment);
                const held before = held_now();
                void *p = vox_malloc(from, alignment);
                ASSERT_TRUE(p);
                fill(p, from, 3);
                p = vox_realloc(p, to);
                ASSERT_TRUE(p);
                EXPECT_TRUE(is_aligned(p, alignment));
                EXPECT_TRUE(is_filled(p, from < to ? from : to, 3));
                fill(p, to, 4); // all of it is ours
                EXPECT_EQ(held_now() - before, plain(to, alignment));
                vox_free(p);
                EXPECT_EQ(held_now(), before);
            }
}

TEST(Memory, ResizingAtTheEdges) {
    const held before = held_now();
    void *const p = vox_realloc(nullptr, 100);
    ASSERT_TRUE(p);
    EXPECT_TRUE(is_aligned(p, 64));
    fill(p, 100, 5);
    for (size_t size : {largest, largest - 64 - 24, largest / 2})
        EXPECT_EQ(vox_realloc(p, size), nullptr) << size;
    EXPECT_TRUE(is_filled(p, 100, 5));
    EXPECT_EQ(held_now() - before, plain(100));
    EXPECT_EQ(vox_realloc(p, 0), nullptr);
    EXPECT_EQ(vox_realloc(nullptr, 0), nullptr);
    EXPECT_EQ(held_now(), before);
}

TEST(Memory, ABlockMayBeFreedByAnotherThread) {
    const held before = held_now();
    void *block = nullptr;
    on_new_thread([&] { block = vox_malloc(1000, 64); }); // ends: its balance lives on
    EXPECT_EQ(held_now() - before, plain(1000));
    on_new_thread([&] { vox_free(block); });
    EXPECT_EQ(held_now(), before);
    EXPECT_EQ(vox_mem_stat(nullptr), before.bytes);
}

CHILD_TEST(Memory, ThePeakCountsWhatIsHeldAndRestartsFromThere) {
    for (int mode : {2, -1, 3, -2, 1000})
        CHECK(vox_peak_mem_usage(mode) == -1);
    void *const early = vox_malloc(500, 64);
    CHECK(vox_peak_mem_usage(1) == 0);
    CHECK(vox_peak_mem_usage(2) == 0);
    void *const a = vox_malloc(1000, 64), *const scratch = vox_serv_allocate(2000, 128);
    const int64_t high = (plain(500).bytes + plain(1000).bytes + pooled(2000, 128).bytes);
    CHECK(vox_peak_mem_usage(2) == high);
    vox_free(a);
    vox_free(early); // made before the start, counted all the same
    vox_serv_deallocate(scratch);
    CHECK(vox_peak_mem_usage(2) == high);
    CHECK(vox_peak_mem_usage(-1) == high);
    CHECK(vox_peak_mem_usage(2) == pooled(2000, 128).bytes); // still held by the pool
    vox_free_buffers();
    CHECK(vox_peak_mem_usage(-1) == pooled(2000, 128).bytes);
    CHECK(vox_peak_mem_usage(2) == 0);
    void *b = vox_malloc(100, 64);
    b = vox_realloc(b, 300);
    CHECK(vox_peak_mem_usage(2) == plain(300).bytes);
    CHECK(vox_peak_mem_usage(7) == -1);
    CHECK(vox_peak_mem_usage(0) == 0);
    for (int mode : {2, -1})
        CHECK(vox_peak_mem_usage(mode) == -1);
    vox_free(b);
    CHECK(vox_peak_mem_usage(1) == 0);
    CHECK(vox_peak_mem_usage(-1) == 0);
}

// Hooks that know their blocks.

std::set<void *> hook_blocks;
int hook_calls[4];

void *given_out(void *block, int hook) {
    ++hook_calls[hook];
    hook_blocks.insert(block);
    return block;
}
void *taken_back(void *block, int hook) {
    ++hook_calls[hook];
    CHECK(hook_blocks.erase(block) == 1);
    return block;
}
void *hook_malloc(size_t size) { return given_out(std::malloc(size), 0); }
void *hook_calloc(size_t count, size_t size) { return given_out(std::calloc(count, size), 1); }
void *hook_realloc(void *old, size_t size) {
    return given_out(std::realloc(taken_back(old, 2), size), 2);
}
void hook_free(void *p) { std::free(taken_back(p, 3)); }

void install_hooks() {
    i_malloc = hook_malloc;
    i_calloc = hook_calloc;
    i_realloc = hook_realloc;
    i_free = hook_free;
}

void use_everything() {
    const held before = held_now();
    void *p = vox_malloc(1000, 64), *const q = vox_calloc(10, 10, 128);
    void *const scratch = vox_serv_allocate(5000, 128);
    CHECK(p && q && scratch && is_zero(q, 100));
    fill(p, 1000, 1);
    fill(scratch, 5000, 2);
    p = vox_realloc(p, 300000);
    CHECK(p && is_filled(p, 1000, 1) && is_filled(scratch, 5000, 2));
    vox_free(p);
    vox_free(q);
    vox_serv_deallocate(scratch);
    vox_free_buffers();
    CHECK(held_now() == before);
}

// One replaced hook is enough for all to be called. The other three hold functions that tell.
CHILD(one_replaced_hook) {
    const int hook = std::atoi(std::getenv("TEST_HOOK"));
    if (hook == 0)
        i_malloc = [](size_t size) { return hook_malloc(size); };
    else if (hook == 1)
        i_calloc = [](size_t count, size_t size) { return hook_calloc(count, size); };
    else if (hook == 2)
        i_realloc = [](void *old, size_t size) { return hook_realloc(old, size); };
    else
        i_free = [](void *p) { hook_free(p); };
    vox_serv_get_fast_mm_status(); // decides
    install_hooks();               // called by their current value, since the decision is for hooks
    use_everything();
    on_new_thread([] { use_scratch(1000, 64, 1); }); // released when the thread ends
    for (int calls : hook_calls)
        CHECK(calls > 0);
    CHECK(hook_blocks.empty());
}

CHILD_TEST(Hooks, AreNotSeenAfterTheFirstAllocation) {
    use_everything();
    install_hooks();
    use_everything();
    for (int calls : hook_calls)
        CHECK(calls == 0);
}

CHILD_TEST(Hooks, MayBeNull) {
    i_malloc = nullptr;
    i_calloc = nullptr;
    i_realloc = nullptr;
    i_free = nullptr;
    CHECK(!vox_malloc(100, 64) && !vox_calloc(1, 100, 64) && !vox_serv_allocate(100, 64));
    install_hooks();
    void *const p = vox_malloc(100, 64);
    fill(p, 100, 1);
    i_realloc = nullptr;
    CHECK(!vox_realloc(p, 200) && is_filled(p, 100, 1));
    vox_free(p);
    CHECK((held_now() == held{0, 0}));
}

// A hook that itself uses the library, from within a request of the library's.
int hook_depth;
template <class Action>
void inside_hook(Action action) {
    if (hook_depth++ == 0)
        action();
    --hook_depth;
}
void use_pool_inside_hook() {
    void *const scratch = vox_serv_allocate(777, 64), *const p = vox_malloc(10, 64);
    CHECK(scratch && p);
    fill(scratch, 777, 9);
    vox_free_buffers();
    held_now();
    CHECK(is_filled(scratch, 777, 9));
    vox_serv_deallocate(scratch);
    vox_free(p);
}
CHILD_TEST(Hooks, MayUseTheLibrary) {
    i_malloc = [](size_t size) {
        inside_hook(use_pool_inside_hook);
        return std::malloc(size);
    };
    i_free = [](void *p) {
        inside_hook(use_pool_inside_hook);
        std::free(p);
    };
    vox_free(vox_realloc(vox_malloc(100, 64), 1000));
    for (size_t round = 0; round < 3; ++round)
        CHECK(use_pool(1000 + 10 * round, 1000) == 7);
    on_new_thread([] { use_scratch(1000, 64, 1); }); // hooks run while it ends, too
    vox_thread_free_buffers();
    hook_depth = 1; // quiet from here on: what the hooks have put back into the pool can go, too
    vox_free_buffers();
    CHECK((held_now() == held{0, 0}));
}

TEST(Hooks, TakeOverWhenReplacedBeforeTheFirstAllocation) {
    for (const char *hook : {"0", "1", "2", "3"})
        expect_success(one_replaced_hook, {{"TEST_HOOK", hook}});
}

CHILD(print_budget) {
    std::printf("%llx", static_cast<unsigned long long>(vox_serv_check_fast_memory_size()));
}
CHILD_TEST(Settings, TheBudgetCanBeSet, {"VOX_FAST_MEMORY_LIMIT", "3"}) {
    CHECK(vox_set_memory_limit(0, 1) == 0 && vox_set_memory_limit(2, 1) == 0);
    CHECK(vox_serv_check_fast_memory_size() == 3 << 20); // as in the environment
    CHECK(vox_set_memory_limit(VOX_MEM_FAST, 4) == 1);
    CHECK(vox_serv_check_fast_memory_size() == 4 << 20);
    CHECK(vox_set_memory_limit(VOX_MEM_FAST, 0) == 1);
    CHECK(vox_serv_check_fast_memory_size() == 0);
    for (int64_t limit : {int64_t(-1), INT64_MIN, INT64_MAX}) {
        CHECK(vox_set_memory_limit(VOX_MEM_FAST, limit) == 1);
        CHECK(vox_serv_check_fast_memory_size() == UINT64_MAX);
    }
}
CHILD_TEST(Settings, TheBudgetCanBeSetBeforeTheVariableIsRead, {"VOX_FAST_MEMORY_LIMIT", "3"}) {
    CHECK(vox_set_memory_limit(VOX_MEM_FAST, 4) == 1);
    vox_free(vox_malloc(10, 64));
    CHECK(vox_serv_check_fast_memory_size() == 4 << 20);
}

TEST(Settings, TheBudgetOfHighBandwidthMemory) {
    const std::string none(16, 'f'), zeros(30, '0');
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"0", {"0", "-0", zeros}},
        {"500000", {"5"}},
        {"700000", {" 7"}},
        {"fffffffffff00000", {"17592186044415"}}, // the largest number of MiB that 64 bits hold
        {none, {"17592186044416", "99999999999999999999", "-1", "-99999999999999999999", "", "5x"}},
        {none, {"5 ", "0x10", "1e3", zeros + "0", std::string(100000, '1')}},
    };
    EXPECT_EQ(run_child(print_budget).out, none);
    for (const auto &[expected, values] : cases)
        expect_said(print_budget, "VOX_FAST_MEMORY_LIMIT", values, expected);
}

} // namespace
