// parallel_test.cpp - teams of the OpenMP runtime's threads, in every situation that a program can
// put them into.
#include "serv/parallel.hpp"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <latch>
#include <pthread.h>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "serv/affinity.hpp"
#include "serv/thread_supply.hpp"
#include "serv/topology.hpp"
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

CHILD(team_of_eight) { std::printf("%d", run_team(8)); }
TEST(Parallel, KeepsTheRuntimesThreadLimitInSilence) {
    const child_result got = run_child(team_of_eight, {{"OMP_THREAD_LIMIT", "3"}});
    EXPECT_EQ(got.out, "3");
    EXPECT_EQ(got.err, "");
}

CHILD(count_tasks) {
    const int at_start = tasks();
    vox_get_max_threads();
    vox_serv_get_ncpus();
    run_team(1);
    const int after_query = tasks();
    run_team(3);
    std::printf("%d %d", after_query - at_start, tasks() - at_start);
}
TEST(Parallel, NoThreadIsMadeBeforeItIsNeeded) { EXPECT_EQ(run_child(count_tasks).out, "0 2"); }

// The child says this and nothing else, and lives to its end.
void expect_output(const child_entry &child, const char *expected) {
    const child_result got = run_child(child);
    EXPECT_EQ(got.out + got.err, expected);
    EXPECT_EQ(got.status, 0);
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

CHILD(bound_caller) {
    processor_mask process;
    read_affinity(0, process);
    int wrong = 0;
    std::thread([&] { // the first of the process to meet the runtime
        const processor_mask one = bind_to_one_processor();
        wrong += vox_get_max_threads() != this_topology().cores;
        wrong += !is_bound_to(one);
        wrong += run_team(2) != 2;
        wrong += !is_bound_to(one);
    })
        .join();
    run_team(2);
    wrong += !is_bound_to(process);
    wrong += this_topology().logical != process.count();
    std::printf("%d", wrong);
}
TEST(Parallel, ABoundCallerStaysBoundAndAFreeOneFree) {
    EXPECT_EQ(run_child(bound_caller).out, "0");
}

// --- fork -------------------------------------------------------------------------------------

// In a forked child ThreadSanitizer takes a new thread in a dead one's place for an error.
#if !defined(__SANITIZE_THREAD__)

int teams_in_child(int threads) {
    return in_forked_child([threads] {
        return (run_team(threads) != threads) + (vox_get_max_threads() < 1) +
               (run_team(threads + 1) != threads + 1);
    });
}

CHILD(forks) {
    int wrong = teams_in_child(3); // before the runtime is used at all
    for (int repeat = 0; repeat < 10; ++repeat) {
        wrong += run_team(3) != 3;
        wrong += teams_in_child(2 + repeat % 3);
        wrong += run_team(4) != 4;
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
    std::thread([&] { wrong += teams_in_child(4); }).join();
    stop = true;
    busy.join();
    wrong += in_forked_child([] { return (run_team(2) != 2) + teams_in_child(3); }); // a grandchild
    std::printf("%d", wrong);
}

CHILD(bound_fork) {
    run_team(2);
    int wrong = in_forked_child([] { // bound in the child
        const processor_mask one = bind_to_one_processor();
        return (run_team(2) != 2) + !is_bound_to(one);
    });
    const processor_mask one = bind_to_one_processor(); // and before the fork
    wrong += in_forked_child([&] {
        const int at_once = !is_bound_to(one);
        return at_once + (run_team(2) != 2) + !is_bound_to(one);
    });
    std::printf("%d", wrong + !is_bound_to(one));
}

TEST(Parallel, WorksInParentAndChildAfterFork) { expect_output(forks, "0"); }
TEST(Parallel, AForkedChildStaysBound) { EXPECT_EQ(run_child(bound_fork).out, "0"); }

#endif

// --- threads that cannot be made --------------------------------------------------------------

void limit(__rlimit_resource what, rlim_t value) {
    rlimit r;
    getrlimit(what, &r);
    r.rlim_cur = value;
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
    static void lift() {
        rlimit r;
        getrlimit(RLIMIT_NPROC, &r);
        limit(RLIMIT_NPROC, r.rlim_max);
    }
};

CHILD(few_tasks) {
    const task_limit few(12);
    const int team = run_team(64), again = run_team(64), small = run_team(1);
    std::printf("%d %d %d", team >= 1 && team < 12, again == team, small);
}
TEST(ParallelUnderLimits, ATeamIsAsLargeAsTheProcessLimitAllows) {
    expect_output(few_tasks, "1 1 1");
}

CHILD(limit_is_lifted) {
    const task_limit few(12);
    const int before = run_team(20);
    task_limit::lift();
    int after = 0;
    for (int call = 0; call < 5000 && after < 20; ++call)
        after = run_team(20);
    std::printf("%d %d", before < 20, after);
}
TEST(ParallelUnderLimits, TheFullTeamComesBackSomeTimeAfterTheLimitIsLifted) {
    EXPECT_EQ(run_child(limit_is_lifted).out, "1 20");
}

CHILD(many_leaders) {
    const task_limit few(24);
    int wrong = 0;
    // One after the other: each gets the workers of the one before.
    for (int leader = 0; leader < 10; ++leader)
        std::thread([&] { wrong += run_team(4) != 4; }).join();
    wrong += proven_workers() != 3;
    // All at once: there are not enough for all.
    std::atomic<int> bad = 0;
    std::latch all_here(10);
    on_threads(10, [&](int) {
        all_here.arrive_and_wait();
        for (int repeat = 0; repeat < 20; ++repeat) {
            const int team = run_team(8);
            bad += team < 1 || team > 8;
        }
    });
    std::printf("%d %d", wrong, bad.load());
}
TEST(ParallelUnderLimits, LeadersShareWhatThereIs) { expect_output(many_leaders, "0 0"); }

#if !defined(__SANITIZE_THREAD__)
// Each process of the chain forks the next while its own team lives.
int chain_of_teams(int depth) {
    const int team = run_team(8);
    return (team < 1 || team > 8) +
           (depth > 1 ? in_forked_child([depth] { return chain_of_teams(depth - 1); }) : 0);
}
CHILD(forks_under_limit) {
    const task_limit few(30);
    std::printf("%d", chain_of_teams(4));
}
TEST(ParallelUnderLimits, AForkedChildFindsOutWhatIsLeftForIt) {
    expect_output(forks_under_limit, "0");
}
#endif

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Sanitizers need address space of their own.
CHILD(little_address_space) {
    long pages = 0;
    std::FILE *const file = std::fopen("/proc/self/statm", "r");
    if (!file || std::fscanf(file, "%ld", &pages) != 1)
        std::abort();
    std::fclose(file);
    limit(RLIMIT_AS, rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(3) << 30));
    const int team = run_team(64), again = run_team(64);
    std::printf("%d %d", team > 1 && team < 64, again == team);
}
TEST(ParallelUnderLimits, ATeamIsAsLargeAsTheAddressSpaceAllows) {
    expect_output(little_address_space, "1 1");
}

CHILD(small_stack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    pthread_t thread;
    const auto body = [](void *) -> void * {
        std::printf("%d %d", vox_get_max_threads() > 0, run_team(3));
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, body, nullptr) == 0)
        pthread_join(thread, nullptr);
}
TEST(Parallel, WorksOnASmallStack) { EXPECT_EQ(run_child(small_stack).out, "1 3"); }
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
