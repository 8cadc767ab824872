// parallel_test.cpp - teams of the OpenMP runtime's threads, in every situation that a program can
// put them into.
#include "serv/parallel.hpp"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <latch>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "serv/affinity.hpp"
#include "serv/thread_supply.hpp"
#include "serv/topology.hpp"
#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "tests/support/tasks.hpp"
#include "vox/service.h"

namespace {

using namespace test;
using namespace vox;

// Runs a region and returns its size, or -1 unless each thread took part exactly once and the
// writes of all sides were seen.
int run_team(int threads) {
    std::vector<int> input(64, 7), visits(size_t(std::max(threads, 1)), 0), sizes = visits;
    parallel(threads, [&](int thread, int team) {
        visits.at(size_t(thread)) += input[size_t(thread) % 64] - 6;
        sizes.at(size_t(thread)) = thread == thread_number() ? team : -1;
    });
    const int team = sizes[0];
    for (int t = 0; t < threads; ++t)
        if (visits[size_t(t)] != (t < team) || (t < team && sizes[size_t(t)] != team))
            return -1;
    return team;
}

TEST(Parallel, EachThreadOfTheTeamTakesPartOnce) {
    for (int threads : {2, 1, 3, 8, 2, 5, 1, 16})
        for (int repeat = 0; repeat < 5; ++repeat)
            ASSERT_EQ(run_team(threads), threads);
    for (int threads : {0, -1, -1000}) {
        int team = 0;
        parallel(threads, [&](int thread, int size) { team = 100 * thread + size; });
        EXPECT_EQ(team, 1);
    }
}

TEST(Parallel, CallersFromManyThreadsHaveTeamsOfTheirOwn) {
    std::atomic<int> wrong = 0;
    for (int generation = 0; generation < 3; ++generation)
        on_threads(12, [&](int caller) {
            for (int repeat = 0; repeat < 20; ++repeat)
                wrong += run_team(caller % 4 + 1) != caller % 4 + 1;
        });
    EXPECT_EQ(wrong, 0);
}

CHILD(nested) {
    vox_set_num_threads(4);
    vox_set_dynamic(std::getenv("DYNAMIC") != nullptr);
    const int before = tasks();
    std::atomic<int> counts = 0, teams = 0, inside = 0;
    parallel(4, [&](int, int) {
        const int count = vox_get_max_threads();
        counts += count;
        inside += vox_serv_omp_in_parallel();
        parallel(count, [&](int, int team) { teams += team; });
    });
    std::printf("%d %d %d, %d more, %d proven, then %d", counts.load(), teams.load(), inside.load(),
                tasks() - before, int(proven_workers()), vox_serv_omp_in_parallel());
}
TEST(Parallel, NestedCallsStayOnTheirThread) {
    // Four callers with one thread each; told to use more, the runtime nests no further.
    EXPECT_EQ(run_child(nested, {{"DYNAMIC", "1"}}).out, "4 4 4, 3 more, 3 proven, then 0");
    EXPECT_EQ(run_child(nested).out, "16 4 4, 3 more, 3 proven, then 0");
    // A program that wants more levels may have them.
    EXPECT_EQ(run_child(nested, {{"OMP_MAX_ACTIVE_LEVELS", "2"}}).out.substr(0, 7), "16 64 4");
}

CHILD_TEST(Parallel, KeepsTheRuntimesThreadLimitInSilence, {"OMP_THREAD_LIMIT", "3"}) {
    CHECK(run_team(8) == 3);
}

CHILD_TEST(Parallel, NoThreadIsMadeBeforeItIsNeeded) {
    const int at_start = tasks();
    vox_get_max_threads();
    vox_serv_get_ncpus();
    run_team(1);
    CHECK(tasks() == at_start);
    run_team(3);
    CHECK(tasks() == at_start + 2);
}

// --- affinity ---------------------------------------------------------------------------------

processor_mask bind_to_one_processor() {
    processor_mask one;
    one.add(sched_getcpu());
    set_affinity(one);
    return one;
}

bool is_bound_to(const processor_mask &mask) {
    processor_mask now;
    return read_affinity(0, now) && now == mask;
}

CHILD_TEST(Parallel, ABoundCallerStaysBoundAndAFreeOneFree) {
    processor_mask process;
    read_affinity(0, process);
    std::thread([&] { // the first of the process to meet the runtime
        const processor_mask one = bind_to_one_processor();
        CHECK(vox_get_max_threads() == this_topology().cores && is_bound_to(one));
        CHECK(run_team(2) == 2 && is_bound_to(one));
    })
        .join();
    run_team(2);
    CHECK(is_bound_to(process));
    CHECK(this_topology().logical == process.count());
}

// --- fork -------------------------------------------------------------------------------------

// In a forked child ThreadSanitizer takes a new thread in a dead one's place for an error.
#if !defined(__SANITIZE_THREAD__)

void use_teams_in_child(int threads) {
    CHECK(in_forked_child([threads] {
              CHECK(run_team(threads) == threads);
              CHECK(vox_get_max_threads() >= 1);
              CHECK(run_team(threads + 1) == threads + 1);
              return 0;
          }) == 0);
}

CHILD_TEST(Parallel, WorksInParentAndChildAfterFork) {
    use_teams_in_child(3); // before the runtime is used at all
    for (int repeat = 0; repeat < 10; ++repeat) {
        CHECK(run_team(3) == 3);
        use_teams_in_child(2 + repeat % 3);
        CHECK(run_team(4) == 4);
    }
    // From a thread that is not the main one, while another keeps its team busy (without allocating:
    // the sanitizers' allocators do not survive that).
    std::atomic<int> rounds = 0;
    std::atomic<bool> stop = false;
    std::thread busy([&] {
        while (!stop) {
            parallel(2, [](int, int) {});
            ++rounds;
        }
    });
    while (rounds < 3)
        std::this_thread::yield();
    std::thread(use_teams_in_child, 4).join();
    stop = true;
    busy.join();
    CHECK(in_forked_child([] {
              CHECK(run_team(2) == 2);
              use_teams_in_child(3); // a grandchild
              return 0;
          }) == 0);
}

CHILD_TEST(Parallel, AForkedChildStaysBound) {
    run_team(2);
    CHECK(in_forked_child([] { // bound in the child
              const processor_mask one = bind_to_one_processor();
              return (run_team(2) != 2) + !is_bound_to(one);
          }) == 0);
    const processor_mask one = bind_to_one_processor(); // and before the fork
    CHECK(in_forked_child([&] {
              CHECK(is_bound_to(one));
              return (run_team(2) != 2) + !is_bound_to(one);
          }) == 0);
    CHECK(is_bound_to(one));
}

#endif

// --- threads that cannot be made --------------------------------------------------------------

void limit(__rlimit_resource what, rlim_t value) {
    rlimit r;
    getrlimit(what, &r);
    r.rlim_cur = std::min(value, r.rlim_max);
    if (setrlimit(what, &r) != 0)
        std::abort();
}

// Few processes and threads may be made while it lives. The limit counts all tasks of a user and
// does not hold for root, so the process becomes a user of its own.
class task_limit {
  public:
    explicit task_limit(rlim_t most) {
        const uid_t nobodys = 20000 + uid_t(getpid()) % 40000;
        if (geteuid() == 0 ? setuid(nobodys) != 0 : unshare(CLONE_NEWUSER) != 0) {
            std::perror("no user to be limited");
            std::abort();
        }
        limit(RLIMIT_NPROC, most);
    }
    ~task_limit() { lift(); }
    static void lift() { limit(RLIMIT_NPROC, RLIM_INFINITY); }
};

CHILD_TEST(ParallelUnderLimits, ATeamIsAsLargeAsTheProcessLimitAllows) {
    const task_limit few(12);
    const int team = run_team(64);
    CHECK(team >= 1 && team < 12);
    CHECK(run_team(64) == team);
    CHECK(run_team(1) == 1);
}

CHILD_TEST(ParallelUnderLimits, TheFullTeamComesBackSomeTimeAfterTheLimitIsLifted) {
    const task_limit few(12);
    CHECK(run_team(20) < 20);
    task_limit::lift();
    for (int call = 0; run_team(20) < 20; ++call)
        CHECK(call < 5000);
}

CHILD_TEST(ParallelUnderLimits, LeadersShareWhatThereIs) {
    const task_limit few(24);
    // One after the other: each gets the workers of the one before.
    for (int leader = 0; leader < 10; ++leader)
        std::thread([] { CHECK(run_team(4) == 4); }).join();
    CHECK(proven_workers() == 3);
    // All at once: there are not enough for all.
    std::latch all_here(10);
    on_threads(10, [&](int) {
        all_here.arrive_and_wait();
        for (int repeat = 0; repeat < 20; ++repeat) {
            const int team = run_team(8);
            CHECK(team >= 1 && team <= 8);
        }
    });
}

#if !defined(__SANITIZE_THREAD__)
// Each process of the chain forks the next while its own team lives.
int chain_of_teams(int depth) {
    const int team = run_team(8);
    return (team < 1 || team > 8) +
           (depth > 1 ? in_forked_child([depth] { return chain_of_teams(depth - 1); }) : 0);
}
CHILD_TEST(ParallelUnderLimits, AForkedChildFindsOutWhatIsLeftForIt) {
    const task_limit few(30);
    CHECK(chain_of_teams(4) == 0);
}
#endif

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Sanitizers need address space of their own.
CHILD_TEST(ParallelUnderLimits, ATeamIsAsLargeAsTheAddressSpaceAllows) {
    long pages = 0;
    std::FILE *const file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%ld", &pages) != 1)
        std::abort();
    std::fclose(file);
    limit(RLIMIT_AS, rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(3) << 30));
    const int team = run_team(64);
    CHECK(team > 1 && team < 64);
    CHECK(run_team(64) == team);
}
#endif

// --- a program on another OpenMP runtime ------------------------------------------------------

TEST(ParallelBesideGnuOpenMP, OneThreadInsideItsRegionsAllOutside) {
    const std::string host = HOST_PREFIX;
    const auto line = [](const char *file) {
        const std::string all = std::to_string(std::min(4, this_topology().cores));
        return std::string(file) + ": outside " + all + " " + all + ", callers 9, inside 1";
    };
    const struct {
        const char *name;
        std::vector<std::string> command;
        const char *preload;
        const char *file; // whose regions the program runs
    } cases[] = {
        {"linked before the library", {host + "gnu_first", "linked"}, "", "libgomp"},
        {"linked after the library", {host + "gnu_last", "linked"}, "", "libgomp"},
        {"library preloaded", {host + "gnu_only", "linked"}, VOX_LIBRARY, "libgomp"},
        {"library opened later", {host + "gnu_only", VOX_LIBRARY}, "", "libgomp"},
        {"runtime opened later", {host + "gnu_late", "late", VOX_LIBRARY}, "", "libgomp"},
        // It offers GNU's interface too, and may be the first that the loader finds.
        {"the library's runtime serves both",
         {host + "gnu_first", "linked"},
         OPENMP_LIBRARY,
         "libomp."},
    };
    for (const auto &c : cases) {
        const child_result got = run_program(
            c.command,
            {{"LD_PRELOAD", c.preload},
             {"VOX_NUM_THREADS", "4"},
             // A host may load the sanitizer late; its threads are then not to be searched for leaks.
             {"ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0"}});
        EXPECT_EQ(got.out, line(c.file)) << c.name;
        EXPECT_EQ(got.err, "") << c.name;
        EXPECT_EQ(got.status, 0) << c.name << ", signal " << got.signal;
    }
}

} // namespace
