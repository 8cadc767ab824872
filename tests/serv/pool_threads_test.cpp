// pool_threads_test.cpp - what becomes of pools when threads end, fork, are more than the table of
// slots holds, or are still at work when the process ends.
#include "tests/serv/memory_support.hpp"

#include <atomic>
#include <latch>
#include <random>
#include <vector>

namespace {

using namespace test;

// The thread checker starts no threads in the child of a fork, and the allocators of both checkers
// hang there when another thread was inside them.
#if defined(__SANITIZE_THREAD__)
constexpr bool may_start_threads_after_fork = false, may_allocate_while_others_fork = false;
#elif defined(__SANITIZE_ADDRESS__)
constexpr bool may_start_threads_after_fork = true, may_allocate_while_others_fork = false;
#else
constexpr bool may_start_threads_after_fork = true, may_allocate_while_others_fork = true;
#endif

TEST(PoolThreads, ManyThreadsWithWalkersAmongThem) {
    const held before = held_now();
    std::atomic<int> running{64};
    std::latch start{64};
    on_threads(66, [&](int t) {
        const unsigned seed = unsigned(t);
        while (t == 64 && running > 0)
            vox_free_buffers();
        while (t == 65 && running > 0)
            held_now();
        if (t >= 64)
            return;
        std::mt19937 random(seed);
        start.arrive_and_wait();
        std::vector<std::pair<void *, size_t>> mine;
        for (int i = 0; i < 2000; ++i) {
            if (mine.size() < 7 && random() % 2) {
                const size_t size = 1 + random() % (random() % 8 ? 300 : 5000);
                void *const p =
                    random() % 8 ? vox_serv_allocate(size, 128) : vox_serv_malloc(size, 128);
                CHECK(p);
                fill(p, size, seed);
                mine.emplace_back(p, size);
            } else if (!mine.empty()) {
                std::swap(mine[random() % mine.size()], mine.back());
                CHECK(is_filled(mine.back().first, mine.back().second, seed));
                vox_serv_deallocate(mine.back().first);
                mine.pop_back();
            }
        }
        for (const auto &[p, size] : mine)
            vox_serv_deallocate(p);
        --running;
    });
    EXPECT_EQ(held_now(), before);
}

// More threads at a time than the fixed table and its first extension have slots.
constexpr int crowd = 2100;
struct crowd_state {
    std::atomic<unsigned> seeds{0};
    std::latch all_hold{crowd}, go{1};
};
void *stand_in_crowd(void *argument) {
    crowd_state &state = *static_cast<crowd_state *>(argument);
    const unsigned seed = ++state.seeds;
    void *const p = vox_serv_allocate(1000, 64);
    CHECK(p);
    fill(p, 1000, seed);
    state.all_hold.count_down();
    state.go.wait();
    CHECK(is_filled(p, 1000, seed));
    vox_serv_deallocate(p);
    use_scratch(900, 64, seed); // from the same buffer
    return nullptr;
}

TEST(PoolThreads, MoreThreadsThanSlotsInTheTable) {
    for (int round = 0; round < 2; ++round) { // the second reuses the slots of the first
        const held before = held_now();
        crowd_state state;
        std::vector<pthread_t> threads;
        for (int i = 0; i < crowd; ++i)
            threads.push_back(start_on_small_stack(stand_in_crowd, &state));
        state.all_hold.wait();
        vox_free_buffers();
        EXPECT_EQ(held_now() - before, (held{crowd * pooled(1000).bytes, crowd}));
        state.go.count_down();
        for (pthread_t thread : threads)
            pthread_join(thread, nullptr);
        EXPECT_EQ(held_now(), before);
    }
}

void use_everything() {
    use_scratch(1000, 64, 1);
    void *const p = vox_malloc(100, 64);
    CHECK(p);
    vox_thread_free_buffers();
    vox_free(p);
}
// Key destructors of the program may run after the library's and use it all the same.
pthread_key_t late_key;
int late_rounds;
void use_late(void *) {
    use_scratch(1000, 64, 1);
    vox_free(vox_malloc(100, 64));
    if (++late_rounds < 2)
        pthread_setspecific(late_key, &late_key); // once more
}
TEST(PoolThreads, DestructorsOfOtherKeysMayUseTheLibrary) {
    const held before = held_now();
    use_scratch(10, 64, 1); // the library's key is made first, and destroyed first
    vox_thread_free_buffers();
    ASSERT_EQ(pthread_key_create(&late_key, use_late), 0);
    for (bool used_before : {true, false}) {
        late_rounds = 0;
        on_new_thread([&] {
            pthread_setspecific(late_key, &late_key);
            if (used_before)
                use_scratch(5000, 128, 2);
        });
        EXPECT_EQ(late_rounds, 2);
    }
    pthread_key_delete(late_key);
    EXPECT_EQ(held_now(), before);
}

CHILD_TEST(PoolThreads, WithoutAKeyThereIsPlainMemory) {
    pthread_key_t key;
    while (pthread_key_create(&key, nullptr) == 0)
        ;
    on_new_thread(use_everything);
    void *const p = vox_serv_allocate(1000, 64);
    CHECK(p && (held_now() == plain(1000)));
    vox_free_buffers();
    vox_serv_deallocate(p);
    CHECK((held_now() == held{0, 0}));
    pthread_key_delete(key);
    use_scratch(1000, 64, 1); // there is a key now
    CHECK((held_now() == pooled(1000)));
}

void *use_all_on_small_stack(void *) {
    CHECK(vox_get_max_threads() > 0);
    vox_peak_mem_usage(1);
    use_everything();
    vox_free(vox_realloc(vox_calloc(10, 10, 64), 100000));
    for (int i = 1; i <= 8; ++i)
        use_scratch(size_t(i) * 100000, 128, 1);
    vox_serv_check_fast_memory_size();
    void *const code = vox_serv_jit_alloc(100);
    CHECK(code && vox_serv_jit_set_exec(code) == 0);
    vox_serv_jit_free(code);
    vox_free_buffers();
    CHECK((held_now() == held{0, 0}));
    return nullptr;
}
CHILD_TEST(PoolThreads, ASmallStackIsEnoughForTheFirstUseOfEverything) {
    pthread_join(start_on_small_stack(use_all_on_small_stack, nullptr), nullptr);
}

// Forks and the end of the process.

std::atomic<bool> stop;
std::latch all_hammer(4);
void hammer(int thread) {
    std::mt19937 random{unsigned(thread)};
    vox_serv_deallocate(vox_serv_allocate(100, 64));
    all_hammer.count_down();
    while (!stop) {
        for (int i = 0; i < 1000; ++i) // so that most forks find a thread in the middle of this
            vox_serv_deallocate(vox_serv_allocate(100, 64));
        if (random() % 16 == 0)
            held_now();
        if (!may_allocate_while_others_fork)
            continue;
        void *const p = vox_serv_allocate(1 + random() % 4000, 64);
        use_scratch(1 + random() % 2000, 64, unsigned(thread));
        vox_serv_deallocate(p);
        if (random() % 16 == 0)
            vox_free_buffers();
        if (random() % 16 == 0)
            on_new_thread([] { use_scratch(100, 64, 1); });
    }
}

void use_after_fork() {
    use_scratch(3000, 64, 1);
    held_now();
    vox_free_buffers();
    if (may_start_threads_after_fork)
        for (int i = 0; i < 8; ++i) // more than had slots in the parent
            on_new_thread([] { use_scratch(3000, 64, 2); });
    vox_free_buffers();
    CHECK(held_now().blocks >= 0);
}

// Threads that hold slots and do nothing else, so that others get slots beyond the table.
void park_threads(int count) {
    static std::latch all_hold(count), never(1);
    auto park = [](void *) -> void * {
        vox_free(vox_malloc(10, 64));
        all_hold.count_down();
        never.wait();
        return nullptr;
    };
    for (int i = 0; i < count; ++i)
        pthread_detach(start_on_small_stack(park, nullptr));
    all_hold.wait();
}

CHILD(fork_among_threads) {
    park_threads(std::atoi(std::getenv("TEST_PARKED")));
    void *const mine = vox_serv_allocate(500, 64);
    fill(mine, 500, 7);
    std::thread others([] { on_threads(4, hammer); });
    all_hammer.wait();
    for (int i = 0; i < 40; ++i)
        CHECK(in_forked_child([&] {
                  use_after_fork();
                  CHECK(is_filled(mine, 500, 7));
                  vox_serv_deallocate(mine); // still the caller's own
                  return vox_serv_allocate(500, 64) != mine;
              }) == 0);
    stop = true;
    others.join();
    _exit(0); // without the parked threads
}
TEST(PoolProcess, TheChildOfAForkWorksWhateverOtherThreadsDid) {
    for (const char *parked : {"0", "1030"})
        expect_success(fork_among_threads, {{"TEST_PARKED", parked}});
}

// A child inherits the idle buffers of threads that it does not have. Those that they were using
// are nobody's: they stay counted, and the next owners of the pools have all five cells.
CHILD_TEST(PoolProcess, TheChildOfAForkTakesOverWhatDeadThreadsLeft) {
    std::latch prepared(1), done(1);
    std::thread other([&] {
        vox_serv_deallocate(vox_serv_allocate(1000, 64));
        CHECK(vox_serv_allocate(2000, 64) && vox_serv_allocate(2000, 64));
        prepared.count_down();
        done.wait();
    });
    prepared.wait();
    const held used{2 * pooled(2000).bytes, 2};
    CHECK((held_now() - used == pooled(1000)));
    CHECK(in_forked_child([&] {
              CHECK((held_now() - used == pooled(1000)));
              vox_free_buffers();
              CHECK(held_now() == used);
              if (may_start_threads_after_fork)
                  on_new_thread([&] {
                      for (int i = 0; i < 5; ++i)
                          CHECK(vox_serv_allocate(100, 64));
                      CHECK((held_now() - used == held{5 * pooled(100).bytes, 5}));
                  });
              return 0;
          }) == 0);
    done.count_down();
    other.join();
}

// At the end of the process the library releases its idle buffers, here through a hook that sends
// the rest of the program through the library once more: a thread in the middle of a call, and
// the exiting thread itself.
struct {
    std::atomic<bool> left_to_the_library{false}; // the program's own handlers have run
    std::atomic<int> stage{0}; // 1: scratch taken, 2: the process ends, 3: the thread has gone on
} ending;

void release_at_exit(void *p) {
    if (ending.left_to_the_library && ending.stage == 1) {
        ending.stage = 2;
        use_everything();
        while (ending.stage != 3)
            usleep(1000);
        use_everything();
        std::fprintf(stderr, "released at exit");
    }
    std::free(p);
}
CHILD(exit_among_threads) {
    i_free = release_at_exit;
    std::atexit([] {
        use_everything();
        use_scratch(1000, 64, 1); // idle when the library's clean-up comes
        ending.left_to_the_library = true;
    });
    std::thread([] {
        void *const scratch = vox_serv_allocate(2000, 64);
        fill(scratch, 2000, 3);
        ending.stage = 1;
        while (ending.stage != 2)
            usleep(1000);
        CHECK(is_filled(scratch, 2000, 3));
        vox_serv_deallocate(scratch);
        use_everything();
        ending.stage = 3;
        for (;;)
            use_scratch(100, 64, 1);
    }).detach();
    while (ending.stage != 1)
        usleep(1000);
}
TEST(PoolProcess, CallsGoOnWhileTheProcessEnds) {
    const child_result r = run_child(exit_among_threads);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "released at exit");
}

} // namespace
