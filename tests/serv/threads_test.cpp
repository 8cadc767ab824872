// threads_test.cpp - the thread-count rule by table, then the settings of real processes.
#include "serv/threads.hpp"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>

#include "serv/thread_state.hpp"
#include "serv/topology.hpp"
#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "tests/support/tasks.hpp"
#include "vox/service.h"

namespace {

using namespace test;
using namespace vox;

constexpr setting prog(int value) { return {value, setter::program}; }
constexpr setting env(int value) { return {value, setter::environment}; }

// Settings of a process under MPI, and the situation of a caller with 8 cores.
thread_settings mpi(int processes, int level, int omp_num_threads = -1) {
    return {{}, {}, {}, {}, omp_num_threads, processes, level};
}
thread_context outside(int runtime_threads, int quota = 0) {
    return {0, false, runtime_threads, 8, quota};
}
thread_context inside(int local, int quota) { return {local, true, 6, 8, quota}; }

TEST(ThreadRule, FollowsItsStepsAndSaysWhichOneDecided) {
    using enum count_origin;
    using enum count_limit;
    constexpr setting off = prog(0), on = prog(1);
    const struct {
        const char *name;
        thread_settings settings; // own, all, dynamic, mpi_safe, OMP_NUM_THREADS, per node, level
        thread_context context;
        int count;
        count_origin origin;
        count_limit limit = none;
    } cases[] = {
        {"nothing set", {}, outside(6), 6, runtime},
        {"more than there are cores", {}, outside(16), 8, runtime, cores},
        {"the quota is below the cores", {}, outside(16, 3), 3, runtime, quota},
        {"the quota is above the cores", {}, outside(16, 12), 8, runtime, cores},
        {"all domains", {{}, env(5)}, outside(6), 5, all_domains},
        {"the domain's own goes before all", {prog(3), env(5)}, outside(6), 3, domain},
        {"a cleared domain follows all", {off, prog(5)}, outside(6), 5, all_domains},
        {"all cleared as well", {off, off}, outside(6), 6, runtime},
        {"chosen counts are limited too", {env(20)}, outside(6), 8, domain, cores},
        {"inside a parallel region", {prog(4)}, inside(0, 0), 1, domain, parallel_region},
        {"inside, dynamic off", {prog(4), {}, off}, inside(0, 0), 4, domain},
        {"dynamic off knows no limit",
         {{}, {}, env(0), off, -1, 4, 0},
         outside(600, 2),
         600,
         runtime},
        {"the thread's own", {prog(4), prog(5), on, off, 1, 4, 0}, inside(100, 2), 100, thread},
        {"MPI safe: the full count", {{}, {}, {}, on, -1, 4, 0}, outside(8), 8, runtime},
        {"not MPI safe", {{}, prog(4), {}, off, 8, 4, 3}, outside(8), 1, all_domains, mpi_not_safe},
        {"processes without threads", mpi(2, 0), outside(8), 1, runtime, mpi_thread_level},
        {"processes share the cores", mpi(3, 1), outside(8), 2, runtime, processes_per_node},
        {"more processes than cores", mpi(9, 3), outside(8), 1, runtime, processes_per_node},
        {"a share above the runtime's count", mpi(2, 1), outside(3), 3, runtime},
        {"no process", mpi(0, 1), outside(8), 8, runtime},
        {"a chosen count is not shared",
         {{}, env(6), {}, {}, -1, 4, 0},
         outside(8),
         6,
         all_domains},
        {"nor is OpenMP's", mpi(4, 0, 6), outside(6), 6, runtime},
        {"as large as an int", {{}, env(INT_MAX), off}, outside(8), INT_MAX, all_domains},
    };
    for (const auto &c : cases) {
        const thread_count got = choose_threads(c.settings, c.context);
        EXPECT_EQ(got.count, c.count) << c.name;
        EXPECT_EQ(int(got.origin), int(c.origin)) << c.name;
        EXPECT_EQ(int(got.limit), int(c.limit)) << c.name;
        const setter by[] = {setter::program, c.settings.own.by, c.settings.all.by, setter::none};
        EXPECT_EQ(int(got.by), int(by[int(c.origin)])) << c.name;
    }
}

// What a process with this environment answers: no domain, then domains 0 to 5, dynamic, stripes,
// processes per node. Dynamic is turned off for the counts, so that the machine's cores do not
// show.
void print_answers() {
    std::printf("%d %d ", vox_get_dynamic(), vox_get_num_stripes());
    vox_set_dynamic(0);
    std::printf("%d:", vox_get_max_threads());
    for (int domain = 0; domain <= 5; ++domain)
        std::printf(" %d", vox_domain_get_max_threads(domain));
    std::printf(" %d", vox_serv_mpi_get_ppn());
}
CHILD(answers) { print_answers(); }

TEST(ThreadVariables, SetTheCountsOfAProcess) {
    // How each text is read: environment_test.
    const std::string overlong(100000, '7'), longest(256, '0'), blanks(100000, ' ');
    const struct {
        environment settings;
        const char *expected; // dynamic, stripes, count: domains 0 to 5, processes per node
    } cases[] = {
        {{}, "1 0 9: 9 9 9 9 9 9 -1"},
        {{{"VOX_NUM_THREADS", "4x"}}, "1 0 1: 1 1 1 1 1 1 -1"},
        {{{"VOX_NUM_THREADS", longest.substr(1) + "3"}}, "1 0 3: 3 3 3 3 3 3 -1"},
        {{{"VOX_NUM_THREADS", longest + "3"}}, "1 0 9: 9 9 9 9 9 9 -1"},
        {{{"VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_BLAS 3;VOX_DOMAIN_FFT="}},
         "1 0 9: 9 3 1 9 9 9 -1"},
        {{{"VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_ALL=2,VOX_DOMAIN_TQM=5"},
          {"VOX_NUM_THREADS", "6"}},
         "1 0 6: 6 6 6 5 6 6 -1"},
        {{{"VOX_DYNAMIC", "\" FALSE"}, {"VOX_NUM_STRIPES", "5"}}, "0 5 9: 9 9 9 9 9 9 -1"},
        {{{"VOX_MPI_PPN", "2"}, {"OMPI_COMM_WORLD_LOCAL_SIZE", "4"}}, "1 0 9: 9 9 9 9 9 9 2"},
        {{{"VOX_MPI_PPN", "2 "}, {"MPI_LOCALNRANKS", "7"}, {"MV2_CPU_MAPPING", "0:1"}},
         "1 0 9: 9 9 9 9 9 9 7"},
        {{{"OMPI_COMM_WORLD_LOCAL_SIZE", "4"}, {"MPI_LOCALNRANKS", "7"}}, "1 0 9: 9 9 9 9 9 9 4"},
        {{{"OMPI_COMM_WORLD_LOCAL_SIZE", "4"}, {"MV2_COMM_WORLD_LOCAL_SIZE", "3"}},
         "1 0 9: 9 9 9 9 9 9 3"},
        {{{"VOX_NUM_THREADS", overlong},
          {"VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_ALL=2" + blanks},
          {"VOX_DYNAMIC", blanks + "FALSE"},
          {"VOX_NUM_STRIPES", overlong},
          {"VOX_MPI_PPN", overlong},
          {"VOX_MPI_THREAD_LEVEL", overlong}},
         "1 0 9: 9 9 9 9 9 9 -1"},
    };
    for (const auto &c : cases) {
        environment settings = c.settings;
        settings.emplace_back("OMP_NUM_THREADS", "9"); // the runtime's count
        SCOPED_TRACE(settings.front().first + "=" + settings.front().second.substr(0, 40));
        expect_output(answers, c.expected, settings);
    }
}

CHILD(count_with_limits) {
    const thread_count n = current_threads(VOX_DOMAIN_BLAS);
    std::printf("%d %d", n.count, int(n.limit));
}

TEST(ThreadVariables, ProcessesOnTheNodeShareItsCores) {
    const int cores = this_topology().cores;
    const auto one = [&](count_limit limit) {
        return "1 " + std::to_string(int(cores > 1 ? limit : count_limit::none));
    };
    const char *const level = "VOX_MPI_THREAD_LEVEL";
    // Thread level 0, or none: one thread, whatever the number of processes.
    expect_said(count_with_limits, level, {"0", "4", "x", ""}, one(count_limit::mpi_thread_level),
                {{"VOX_MPI_PPN", "1"}});
    expect_said(count_with_limits, level, {"1"}, std::to_string(cores) + " 0",
                {{"VOX_MPI_PPN", "1"}});
    expect_said(count_with_limits, level, {"3"}, one(count_limit::processes_per_node),
                {{"VOX_MPI_PPN", "9999"}});
}

CHILD(program_sets) {
    if (std::getenv("TEST_READ_FIRST")) {
        print_answers();
        setenv("VOX_NUM_THREADS", "8", 1); // too late
        std::printf("|");
    }
    vox_set_num_threads(3);
    vox_domain_set_num_threads(0, VOX_DOMAIN_FFT);
    vox_set_num_stripes(2);
    vox_set_dynamic(1);
    print_answers();
}

TEST(ThreadSettings, TheProgramsGoBeforeTheEnvironmentsWheneverTheyCome) {
    environment settings = {{"VOX_NUM_THREADS", "5"},
                            {"VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_BLAS=6,VOX_DOMAIN_FFT=7"},
                            {"VOX_NUM_STRIPES", "4"},
                            {"VOX_DYNAMIC", "FALSE"}};
    expect_output(program_sets, "1 2 3: 3 6 3 3 3 3 -1", settings);
    settings.emplace_back("TEST_READ_FIRST", "");
    expect_output(program_sets, "0 4 5: 5 6 7 5 5 5 -1|1 2 3: 3 6 3 3 3 3 -1", settings);
}

class Settings : public ::testing::Test {
  protected:
    void SetUp() override {
        for (int domain = 1; domain < 5; ++domain)
            vox_domain_set_num_threads(0, domain);
        vox_set_num_threads(2);
        vox_set_num_stripes(0);
        vox_set_dynamic(0);
    }
};

TEST_F(Settings, BadArgumentsChangeNothing) {
    for (int n : {0, -1, INT_MIN}) {
        vox_set_num_threads(n);
        EXPECT_EQ(vox_get_max_threads(), 2) << n;
    }
    const struct {
        int n, domain;
    } bad[] = {{3, 5}, {3, -1}, {3, INT_MIN}, {-1, 1}, {INT_MIN, 0}, {-1, 5}};
    for (const auto &b : bad)
        EXPECT_EQ(vox_domain_set_num_threads(b.n, b.domain), 0) << b.n << ", " << b.domain;
    for (int domain : {-1, 0, 1, 2, 3, 4, 5, INT_MIN, INT_MAX})
        EXPECT_EQ(vox_domain_get_max_threads(domain), 2) << domain;
    vox_set_num_stripes(3);
    vox_set_num_stripes(-1);
    EXPECT_EQ(vox_get_num_stripes(), 3);
}

TEST_F(Settings, FortranFormsTakeEveryScalarByAddress) {
    const vox_int seven = 7, five = 5, three = 3, zero = 0, one = 1, blas = VOX_DOMAIN_BLAS;
    vox_set_num_threads_(&seven);
    EXPECT_EQ(vox_get_max_threads_(), 7);
    VOX_SET_NUM_THREADS(&five);
    EXPECT_EQ(VOX_GET_MAX_THREADS(), 5);
    EXPECT_EQ(vox_domain_set_num_threads_(&seven, &blas), 1);
    EXPECT_EQ(vox_domain_get_max_threads_(&blas), 7);
    EXPECT_EQ(VOX_DOMAIN_SET_NUM_THREADS(&three, &blas), 1);
    EXPECT_EQ(VOX_DOMAIN_GET_MAX_THREADS(&blas), 3);
    EXPECT_EQ(vox_set_num_threads_local_(&seven), 0);
    EXPECT_EQ(VOX_SET_NUM_THREADS_LOCAL(&zero), 7);
    vox_set_num_stripes_(&three);
    EXPECT_EQ(vox_get_num_stripes_(), 3);
    VOX_SET_NUM_STRIPES(&five);
    EXPECT_EQ(VOX_GET_NUM_STRIPES(), 5);
    vox_set_dynamic_(&seven);
    EXPECT_EQ(vox_get_dynamic_(), 1);
    VOX_SET_DYNAMIC(&zero);
    EXPECT_EQ(VOX_GET_DYNAMIC(), 0);
    vox_set_dynamic(1);
    vox_mpi_safe_(&zero);
    EXPECT_EQ(vox_get_max_threads(), 1);
    VOX_MPI_SAFE(&one);
    EXPECT_EQ(vox_get_max_threads(), std::min(5, this_topology().cores));
}

TEST_F(Settings, TheThreadsOwnCountIsItsOwn) {
    EXPECT_EQ(vox_set_num_threads_local(30), 0);
    EXPECT_EQ(vox_get_max_threads(), 30);
    vox_domain_set_num_threads(9, VOX_DOMAIN_BLAS);
    std::atomic<int> wrong = 0;
    on_threads(16, [&](int t) {
        wrong += vox_domain_get_max_threads(VOX_DOMAIN_BLAS) != 9;
        for (int n = t + 1, previous = 0; n < 1000; n += 16) {
            wrong += vox_set_num_threads_local(n) != previous;
            wrong += vox_domain_get_max_threads(VOX_DOMAIN_BLAS) != n;
            previous = n;
        }
        vox_set_num_threads_local(-5); // like 0
        wrong += vox_domain_get_max_threads(VOX_DOMAIN_BLAS) != 9;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(vox_set_num_threads_local(0), 30);
    EXPECT_EQ(vox_get_max_threads(), 2);
}

CHILD_TEST(ThreadSettings, TheMpiSafeFlagOverridesTheSharing, {"VOX_MPI_PPN", "1"}) {
    for (int flag : {1, 0, 2, -1}) {
        vox_mpi_safe(flag);
        CHECK(current_threads(-1).count == (flag == 1 ? this_topology().cores : 1));
    }
}

// A destructor that runs after the library's clean-up has deleted the thread key.
__attribute__((destructor(101))) void call_late() {
    if (!std::getenv("CALL_LATE"))
        return;
    const int before = vox_set_num_threads_local(4), count = vox_get_max_threads();
    std::printf("%d %d %d", before, count, vox_set_num_threads_local(0));
    std::fflush(stdout);
}
CHILD(use_and_leave) {
    vox_set_num_threads_local(2);
    vox_get_max_threads();
    setenv("CALL_LATE", "1", 1);
}
TEST(ThreadSettings, WorkAfterTheExitCleanUp) { expect_output(use_and_leave, "0 4 4"); }

CHILD_TEST(ThreadSettings, HonourTheAffinityMask) {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    sched_setaffinity(0, sizeof one, &one);
    CHECK(vox_get_max_threads() == 1);
    vox_set_num_threads(16);
    CHECK(vox_get_max_threads() == 1);
}

} // namespace
