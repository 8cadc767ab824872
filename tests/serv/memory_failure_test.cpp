// memory_failure_test.cpp - every allocation failing in turn: the caller gets null, what it has
// stays as it was, nothing is lost and the books balance.
//
// The test is linked with --wrap for the C library's functions, so that it can make them fail for
// the library alone; the hooks fail by themselves.
#include "tests/serv/memory_support.hpp"

#include <cstdlib>
#include <latch>
#include <sys/mman.h>

#include "serv/memory.hpp"

extern "C" {
decltype(mmap) __real_mmap, __wrap_mmap;
decltype(malloc) __real_malloc, __wrap_malloc;
decltype(calloc) __real_calloc, __wrap_calloc;
decltype(realloc) __real_realloc, __wrap_realloc;
}

namespace {

using namespace test;

struct {
    bool active = false;
    int requests = 0;
    int first = 0, last = 0; // the numbers of the requests that fail
} plan;

bool refused() {
    return plan.active && ++plan.requests >= plan.first && plan.requests <= plan.last;
}

void *hook_malloc(size_t size) { return refused() ? nullptr : __real_malloc(size); }
void *hook_calloc(size_t count, size_t size) {
    return refused() ? nullptr : __real_calloc(count, size);
}
void *hook_realloc(void *old, size_t size) {
    return refused() ? nullptr : __real_realloc(old, size);
}

void use_plain() {
    void *const p = vox_malloc(1000, 64), *const zeroed = vox_calloc(100, 8, 4096);
    CHECK(!zeroed || is_zero(zeroed, 800));
    vox_free(zeroed);
    if (!p)
        return;
    fill(p, 1000, 1);
    void *const grown = vox_realloc(p, 300000);
    CHECK(is_filled(grown ? grown : p, 1000, 1));
    if (grown)
        fill(grown, 300000, 2);
    void *const now = grown ? grown : p;
    void *const shrunk = vox_realloc(now, 700);
    CHECK(is_filled(shrunk ? shrunk : now, 700, grown ? 2 : 1));
    vox_free(shrunk ? shrunk : now);
}

// Everything that allocates. Returns the number of requests made to the source.
int run_script(int first_failing, int last_failing) {
    plan = {true, 0, first_failing, last_failing};
    const held before = held_now();
    use_plain();
    for (size_t step :
         {100, 100, 5000, 5000}) // from nothing, from what is there, replaced, and again
        use_pool(1000, step);
    use_plain();
    vox_thread_free_buffers();
    plan.active = false;
    CHECK(held_now() == before);
    return plan.requests;
}

CHILD(all_in_turn) {
    if (std::getenv("TEST_HOOKS")) {
        i_malloc = hook_malloc;
        i_calloc = hook_calloc;
        i_realloc = hook_realloc;
    }
    CHECK(vox::memory_facts_now().hooked == (i_malloc == hook_malloc));
    vox_peak_mem_usage(1);
    const int requests = run_script(0, 0);
    CHECK(requests > 20);
    for (int k = 1; k <= requests; ++k) {
        run_script(k, k);
        run_script(k, INT32_MAX); // from then on
        run_script(1, k);         // until then
    }
    CHECK(run_script(0, 0) == requests); // as good as new
    const int64_t high = vox_peak_mem_usage(-1);
    CHECK(high > 300000 && high < 1000000 && vox_peak_mem_usage(2) == 0);
}

TEST(MemoryFailure, EveryAllocationInTurn) {
    expect_success(all_in_turn);
    expect_success(all_in_turn, {{"TEST_HOOKS", "1"}});
    expect_success(all_in_turn, {{"VOX_DISABLE_FAST_MM", ""}});
}

// Records beyond the table of slots are mapped. A thread that gets none has plain memory.
CHILD_TEST(MemoryFailure, NoMappingForMoreRecordsOrForCode) {
    std::latch all_hold(1024), go(1);
    std::thread others([&] {
        on_threads(1024, [&](int) {
            vox_free(vox_malloc(10, 64));
            all_hold.count_down();
            go.wait();
        });
    });
    all_hold.wait();
    plan = {true, 0, 1, INT32_MAX};
    void *const code = vox_serv_jit_alloc(100);
    CHECK(!code && plan.requests == 1);
    plan = {true, 0, 1, 1};
    void *const p = vox_serv_allocate(1000, 64);
    CHECK(p && plan.requests > 1 && (held_now() == plain(1000)));
    plan.active = false;
    void *const q = vox_serv_allocate(1000, 64); // has a record now
    CHECK(q && (held_now() - plain(1000) == pooled(1000)));
    vox_serv_deallocate(p);
    vox_serv_deallocate(q);
    CHECK((held_now() == pooled(1000)));
    go.count_down();
    others.join();
}

} // namespace

extern "C" {
void *__wrap_mmap(void *at, size_t size, int access, int flags, int file, off_t offset) noexcept {
    return refused() ? MAP_FAILED : __real_mmap(at, size, access, flags, file, offset);
}
void *__wrap_malloc(size_t size) noexcept { return hook_malloc(size); }
void *__wrap_calloc(size_t count, size_t size) noexcept { return hook_calloc(count, size); }
void *__wrap_realloc(void *old, size_t size) noexcept { return hook_realloc(old, size); }
}
