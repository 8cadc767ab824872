// every_call_test.cpp - every computational routine in whatever state its process and its operands are:
// nested in parallel regions, forked, called by many threads at once, on a small stack, without memory,
// at any alignment. What a call computes is compared, bit for bit, with the same call in peace.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fenv.h>
#include <gtest/gtest.h>
#include <latch>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <xmmintrin.h>

#include "serv/parallel.hpp"
#include "tests/process/routine_calls.hpp"
#include "tests/support/child.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/tasks.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

routine_calls calls(call_size size) {
    routine_calls all;
    add_level1_calls(all, size);
    add_matrix_calls(all, size);
    add_trans_calls(all, size);
    add_dnn_calls(all, size);
    add_lapack_calls(all, size);
    add_vm_calls(all, size);
    return all;
}

// Copies of a call's operands, so many bytes behind a cache line.
class copies {
  public:
    copies(const routine_call &call, size_t offset) {
        for (const operand_bytes &o : call.operands) {
            memory_.emplace_back(o.initial.size() + 64 + offset);
            const size_t skipped = (64 - reinterpret_cast<uintptr_t>(memory_.back().data())) % 64;
            addresses_.push_back(memory_.back().data() + skipped + offset);
            std::memcpy(addresses_.back(), o.initial.data(), o.initial.size());
        }
    }
    char *const *addresses() const { return addresses_.data(); }

  private:
    std::vector<byte_array> memory_;
    std::vector<char *> addresses_;
};

// What the operands are after the call, as one number.
size_t outcome(const routine_call &call, size_t offset = 0) {
    const copies on(call, offset);
    call.make(on.addresses());
    size_t all = 0;
    for (size_t i = 0; i < call.operands.size(); ++i)
        all = all * 31 +
              std::hash<std::string_view>()({on.addresses()[i], call.operands[i].initial.size()});
    return all;
}
std::vector<size_t> outcomes(const routine_calls &all, size_t offset = 0) {
    std::vector<size_t> each;
    for (const routine_call &call : all)
        each.push_back(outcome(call, offset));
    return each;
}

// Children report calls by name.
void complain(const routine_call &call, const char *about) {
    std::fprintf(stderr, "%s: %s\n", call.name.c_str(), about);
}
void compare(const routine_calls &all, const size_t *expected, const size_t *got) {
    for (size_t i = 0; i < all.size(); ++i)
        if (got[i] != expected[i])
            complain(all[i], "other bits");
}

// The path that the test runs on.
environment this_path() {
    environment path;
    for (const char *name : {"VOX_CBWR", "VOX_DEBUG_CPU_TYPE"})
        if (const char *value = std::getenv(name))
            path.emplace_back(name, value);
    return path;
}
void expect_silence(const child_entry &child, const environment &settings = this_path()) {
    const child_result result = run_child(child, settings);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0) << "signal " << result.signal;
}

void use_threads(int count) {
    vox_set_dynamic(0);
    vox_set_num_threads(count);
}

CHILD(nested) {
    const routine_calls all = calls(call_size::threaded);
    vox_set_num_threads(4);
    vox_set_num_threads_local(1);
    const std::vector<size_t> expected = outcomes(all);
    vox_set_num_threads_local(0);
    std::vector<size_t> got(all.size());
    vox::parallel(4, [](int, int) {});
    const int before = tasks();
    vox::parallel(4, [&](int thread, int team) {
        for (size_t i = size_t(thread); i < all.size(); i += size_t(team))
            got[i] = outcome(all[i]);
    });
    if (tasks() != before)
        std::fprintf(stderr, "%d threads became %d\n", before, tasks());
    compare(all, expected.data(), got.data());
}
TEST(EveryCall, InAParallelRegionStaysOnItsThread) {
    environment settings = this_path();
    settings.emplace_back("OMP_MAX_ACTIVE_LEVELS", "2"); // the runtime would let it have more
    expect_silence(nested, settings);
}

// Many threads make the first calls of the process, of one routine each, then of others.
CHILD(many_callers) {
    constexpr size_t callers = 64, most_threads = 3;
    const routine_calls all = calls(call_size::threaded);
    vox_set_dynamic(0);
    std::vector<size_t> got[callers], expected[most_threads];
    std::vector<std::thread> team;
    std::latch start(callers);
    const auto of = [&](size_t caller, size_t i) { return (caller * 7 + i * 61) % all.size(); };
    for (size_t c = 0; c < callers; ++c)
        team.emplace_back([&, c] {
            vox_set_num_threads_local(int(c % most_threads) + 1);
            start.arrive_and_wait();
            for (size_t i = 0; i < 16; ++i)
                got[c].push_back(outcome(all[of(c, i)]));
        });
    for (std::thread &t : team)
        t.join();
    for (size_t threads = 1; threads <= most_threads; ++threads) {
        vox_set_num_threads_local(int(threads));
        expected[threads - 1] = outcomes(all);
    }
    for (size_t c = 0; c < callers; ++c)
        for (size_t i = 0; i < got[c].size(); ++i)
            if (got[c][i] != expected[c % most_threads][of(c, i)])
                complain(all[of(c, i)], "other bits");
}
TEST(EveryCall, ServesManyCallersAtOnce) { expect_silence(many_callers); }

CHILD(forks) {
    const routine_calls all = calls(call_size::threaded);
    use_threads(3);
    void *const shared = mmap(nullptr, 2 * all.size() * sizeof(size_t), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    size_t *const got = static_cast<size_t *>(shared);
    const auto in_child = [&](size_t *results) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(30); // a child that hangs is a failure
            std::ranges::copy(outcomes(all), results);
            _exit(0);
        }
        int status = -1;
        if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
            std::fprintf(stderr, "status %d\n", status);
    };
    in_child(got); // before anything is used
    const std::vector<size_t> expected = outcomes(all);
    in_child(got + all.size());
    compare(all, expected.data(), got);
    compare(all, expected.data(), got + all.size());
    compare(all, expected.data(), outcomes(all).data()); // in the parent, afterwards
}
TEST(EveryCall, WorksInTheChildOfAFork) { expect_silence(forks); }

// The first use of everything is on the small stack.
CHILD(small_stack) {
    static routine_calls all = calls(call_size::threaded), small = calls(call_size::small);
    static std::vector<size_t> got;
    use_threads(3);
    const auto body = [](void *) -> void * {
        got = outcomes(all);
        vox_set_num_threads_local(600); // many partial results
        outcomes(small);
        for (const routine_call &call : all)
            if (call.name.substr(1) == "dot")
                outcome(call);
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    pthread_t thread;
    if (pthread_create(&thread, &attributes, body, nullptr) != 0)
        return complain(all.front(), "no thread");
    pthread_join(thread, nullptr);
    compare(all, outcomes(all).data(), got.data());
}
TEST(EveryCall, RunsOnASmallStack) { expect_silence(small_stack); }

// What belongs to the thread: rounding and flushing, x87's precision, processors, signals.
struct thread_facts {
    unsigned mxcsr = _mm_getcsr() & ~unsigned(_MM_EXCEPT_MASK); // all but the flags
    uint16_t x87 = 0;
    cpu_set_t processors = {};
    sigset_t signals = {};

    thread_facts() {
        asm volatile("fnstcw %0" : "=m"(x87));
        sched_getaffinity(0, sizeof processors, &processors);
        pthread_sigmask(SIG_BLOCK, nullptr, &signals);
    }
    bool operator==(const thread_facts &other) const {
        return mxcsr == other.mxcsr && x87 == other.x87 &&
               CPU_EQUAL(&processors, &other.processors) &&
               std::memcmp(&signals, &other.signals, 8) == 0;
    }
};
CHILD(thread_state) {
    use_threads(3);
    for (int unusual : {0, 1}) {
        if (unusual) {
            _mm_setcsr(_mm_getcsr() | 0x8040); // subnormal numbers as zeros
            fesetround(FE_UPWARD);             // in both units
            cpu_set_t one;
            CPU_ZERO(&one);
            CPU_SET(sched_getcpu(), &one);
            sched_setaffinity(0, sizeof one, &one);
        }
        const thread_facts before;
        for (call_size size : {call_size::small, call_size::threaded})
            for (const routine_call &call : calls(size)) {
                outcome(call);
                if (!(thread_facts() == before))
                    return complain(call, "changed its thread");
            }
    }
}
TEST(EveryCall, LeavesTheThreadAsItWas) { expect_silence(thread_state); }

// Scratch is the thread's own, kept from call to call.
TEST(EveryCall, TakesNoMemoryWhenItIsSmall) {
    for (const routine_call &call : calls(call_size::small)) {
        outcome(call);
        const copies on(call, 0);
        memory_requests = 0;
        call.make(on.addresses());
        EXPECT_EQ(memory_requests, call.requests) << call.name;
    }
}

// Nothing but reading and writing is allowed: any other request to the system, for a lock that is taken, for
// memory or for a thread, ends the child, and the last name that it wrote is the call's.
CHILD(no_system_call) {
    const routine_calls all = calls(call_size::small);
    std::vector<copies> on;
    for (const routine_call &call : all) {
        on.emplace_back(call, 0);
        call.make(on.back().addresses());
    }
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT);
    for (size_t i = 0; i < all.size(); ++i) {
        const std::string_view name = all[i].name;
        if (all[i].requests) // a buffer that the caller asks for
            continue;
        if (write(1, "\n", 1) == 1 && write(1, name.data(), name.size()) > 0)
            all[i].make(on[i].addresses());
    }
    syscall(SYS_exit, 0);
}
TEST(EveryCall, AsksNothingOfTheSystemWhenItIsSmall) {
    const child_result result = run_child(no_system_call, this_path());
    EXPECT_EQ(result.status, 0) << result.out.substr(result.out.rfind('\n') + 1);
}

// Every allocation of a call fails in turn, then all of them. The call computes the same by another way,
// or says so and leaves its matrices alone. Two ways differ by roundings: by far less than half of the
// digits, on these operands.
class without_memory {
  public:
    explicit without_memory(const routine_call &call) : call_(call), expected_(call, 0) {
        const int wanted = run(expected_, 0);
        for (int request = 1; request <= wanted; ++request)
            check(request);
        if (wanted)
            check(every_request);
        most = std::max(most, wanted);
    }
    static inline int most = 0;

  private:
    int run(const copies &on, int refused) {
        vox_free_buffers();
        memory_requests = 0;
        refused_request = refused;
        call_.make(on.addresses());
        refused_request = 0;
        return memory_requests;
    }
    void check(int refused) {
        const copies got(call_, 0);
        run(got, refused);
        vox_int info = 0;
        if (call_.matrices)
            std::memcpy(&info, got.addresses()[call_.operands.size() - 1], sizeof info);
        if (info < 0 ? !untouched(got) : !near(got))
            complain(call_, refused < 0 ? "without memory" : "without an allocation");
    }
    bool untouched(const copies &got) const {
        for (size_t i = 0; i < call_.matrices; ++i)
            if (std::memcmp(got.addresses()[i], call_.operands[i].initial.data(),
                            call_.operands[i].initial.size()) != 0)
                return false;
        return true;
    }
    bool near(const copies &got) const {
        for (size_t i = 0; i < call_.operands.size(); ++i) {
            char *const x = got.addresses()[i], *const y = expected_.addresses()[i];
            const size_t part = call_.operands[i].part, size = call_.operands[i].initial.size();
            if (!(part == 4   ? near(as<float>(x), as<float>(y), size / 4)
                  : part == 8 ? near(as<double>(x), as<double>(y), size / 8)
                              : call_.pivots || std::memcmp(x, y, size) == 0))
                return false;
        }
        return true;
    }
    template <class R>
    bool near(const R *x, const R *y, size_t n) const {
        R largest = 0;
        for (size_t i = 0; i < n; ++i)
            largest = std::max(largest, std::fabs(y[i]));
        const R bound =
            largest * (call_.pivots ? 10 : std::sqrt(std::numeric_limits<R>::epsilon()));
        for (size_t i = 0; i < n; ++i)
            if (!(std::fabs(x[i] - y[i]) <= bound))
                return false;
        return true;
    }

    const routine_call &call_;
    const copies expected_;
};
CHILD(no_memory) {
    use_threads(3);
    for (const routine_call &call : calls(call_size::threaded))
        without_memory{call};
    if (without_memory::most == 0)
        std::fprintf(stderr, "no call needs memory\n");
}
TEST(EveryCall, SurvivesEveryAllocationThatFails) { expect_silence(no_memory); }

CHILD(anywhere) {
    use_threads(3);
    for (call_size size : {call_size::small, call_size::threaded}) {
        const routine_calls all = calls(size);
        const std::vector<size_t> expected = outcomes(all);
        for (size_t offset : {8, 24})
            compare(all, expected.data(), outcomes(all, offset).data());
    }
}
TEST(EveryCall, GivesTheSameBitsWhereverItsOperandsLieWhenReproducible) {
    const char *const path = std::getenv("VOX_TEST_PATH");
    const bool lowest = path && path == std::string_view("def");
    expect_silence(anywhere,
                   {{"VOX_CPU_VENDOR", "ANY"}, {"VOX_CBWR", lowest ? "COMPATIBLE" : "AUTO"}});
}

} // namespace
