// element_errors_test.cpp - elements in error among others: where they are said to be, what a callback may do about them,
// and modes for one call.
#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "tests/support/thread_counts.hpp"
#include "tests/vm/kernel_sets.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

// Every status that was reported, by element, and the modes of those who did, who leave another result; threads
// report at the same time.
std::mutex lock;
std::map<int, int> told;
std::set<uint32_t> modes;
int listen(tqmErrorContext *context) {
    const std::scoped_lock guard(lock);
    EXPECT_EQ(told.count(context->iIndex), 0u) << "told twice of " << context->iIndex;
    told[context->iIndex] = context->iCode;
    modes.insert(tqmGetMode());
    context->dbR1 = context->iIndex;
    return 0;
}

// Quotients by zero and of zeros at the places of a bit set of errors, at both ends of shares and vectors.
TEST(ElementErrors, AreCountedFromTheCallersVector) {
    in_new_thread([] {
        tqmSetErrorCallBack(listen);
        const thread_counts counts;
        const double zero = 0;
        for (const int n : {1, 5, 8, 17, 64, 99, 1000, 1003})
            for (const int threads : {1, 2, 3, 4}) {
                std::vector<double> a(size_t(n), 3), b(a.size(), 2), r(a.size());
                std::map<int, int> planted;
                for (const int i : {0, 1, 7, 8, n / 4, n / 2 - 1, n / 2, n - 2, n - 1})
                    if (i >= 0 && i < n) {
                        b[size_t(i)] = 0;
                        a[size_t(i)] = i % 2 ? 1 : 0;
                        planted[i] = i % 2 ? TQM_STATUS_SING : TQM_STATUS_ERRDOM;
                    }
                counts.set(threads);
                in_every_kernel_set([&](int index, int accuracy) {
                    SCOPED_TRACE(testing::Message() << "n " << n << " threads " << threads
                                                    << " index " << index << ' ' << accuracy);
                    told.clear();
                    modes.clear();
                    tqmClearErrStatus();
                    vmdDiv(n, a.data(), b.data(), r.data(), accuracy | TQM_ERRMODE_CALLBACK);
                    EXPECT_EQ(told, planted);
                    EXPECT_EQ(modes, std::set{uint32_t(accuracy | TQM_ERRMODE_CALLBACK)});
                    if (threads == 1 || n < 100) {
                        EXPECT_EQ(tqmGetErrStatus(), planted.rbegin()->second) << "the last one";
                    } else {
                        EXPECT_GT(tqmGetErrStatus(), 0);
                    }
                    for (int i = 0; i < n; ++i)
                        EXPECT_NEAR(r[size_t(i)], planted.count(i) ? i : 1.5, 1e-7);
                    told.clear();
                    vmdInv(1, &zero, r.data(), accuracy | TQM_ERRMODE_CALLBACK);
                    EXPECT_EQ(told, (std::map{std::pair(0, int(TQM_STATUS_SING))}))
                        << "the next call";
                    vmdAdd(n, a.data(), b.data(), r.data(), accuracy);
                    if (threads > 1 && n >= 100) {
                        EXPECT_EQ(tqmGetErrStatus(), 0) << "that of the last call";
                    }
                });
            }
    });
}

// The arguments that a callback is told of are those of the call, though the results have taken their place; what
// it leaves as the result goes there, unless it says that it has dealt with the error.
int answer;
std::vector<double> seen;
int change(tqmErrorContext *context) {
    seen.push_back(context->dbA1);
    seen.push_back(context->dbA2);
    context->dbR1 = 100 + context->iIndex;
    context->dbR2 = context->dbA1 = 12345; // no results of this function, and too late
    return answer;
}

TEST(ElementErrors, ResultsAreWhatTheCallbackLeaves) {
    in_new_thread([] {
        tqmSetErrorCallBack(change);
        in_every_kernel_set([](int, int accuracy) {
            for (const bool in_place : {false, true})
                for (answer = 0; answer <= 1; ++answer) {
                    std::vector<double> a(20, 4), b(20, 2), other(20);
                    double *const r = in_place ? a.data() : other.data();
                    a[2] = -8, b[2] = 0, a[19] = 0, b[19] = 0;
                    seen.clear();
                    std::feclearexcept(FE_ALL_EXCEPT);
                    errno = 0;
                    vmdDiv(20, a.data(), b.data(), r, accuracy);
                    EXPECT_EQ(seen, (std::vector<double>{-8, 0, 0, 0}));
                    if (answer == 0) {
                        EXPECT_EQ(r[2], 102);
                        EXPECT_EQ(r[19], 119);
                        EXPECT_EQ(errno, 33);
                    } else {
                        EXPECT_EQ(r[2], -HUGE_VAL);
                        EXPECT_NE(r[19], r[19]);
                        EXPECT_EQ(errno, 0);
                    }
                    EXPECT_NEAR(r[3], 2, 1e-6);
                }
        });
    });
}

// A callback may call the library, with errors of its own.
int depth;
std::vector<std::pair<int, int>> nested; // depth and index
int call_again(tqmErrorContext *context) {
    const std::scoped_lock guard(lock);
    nested.emplace_back(depth, context->iIndex);
    if (depth == 0) {
        depth = 1;
        float x[30], r[30];
        std::fill_n(x, 30, 1.0f);
        x[11] = x[29] = 0;
        lock.unlock();
        vmsInv(30, x, r, TQM_EP | TQM_ERRMODE_CALLBACK);
        lock.lock();
        depth = 0;
        EXPECT_TRUE(std::isinf(r[11]) && std::isinf(r[29]));
    }
    return 0;
}

TEST(ElementErrors, CallbacksMayCallAgain) {
    in_new_thread([] {
        tqmSetErrorCallBack(call_again);
        const uint32_t mode = tqmGetMode();
        const thread_counts counts;
        std::vector<double> x(1000, 4), r(1000);
        x[600] = x[990] = 0;
        for (const int threads : {1, 2}) {
            counts.set(threads);
            nested.clear();
            vmdInv(1000, x.data(), r.data(), TQM_LA | TQM_ERRMODE_CALLBACK);
            EXPECT_EQ(nested, (std::vector<std::pair<int, int>>{
                                  {0, 600}, {1, 11}, {1, 29}, {0, 990}, {1, 11}, {1, 29}}));
            EXPECT_EQ(tqmGetMode(), mode);
            EXPECT_EQ(tqmGetErrStatus(), TQM_STATUS_SING);
            EXPECT_NEAR(r[999], 0.25, 1e-15);
        }
    });
}

// A callback that throws the thread's mode and callback away is none of the call's business.
int forget(tqmErrorContext *) {
    tqmClearErrorCallBack();
    tqmSetMode(TQM_EP | TQM_ERRMODE_NOERR);
    return 0;
}

TEST(CallMode, IsForOneCallAndEmptyFieldsAreTheThreads) {
    in_new_thread([] {
        tqmSetMode(TQM_LA | TQM_ERRMODE_IGNORE);
        const double zero = 0;
        double r;
        const uint32_t mode = tqmGetMode();
        vmdLn(1, &zero, &r, TQM_HA | TQM_ERRMODE_NOERR);
        EXPECT_EQ(tqmGetErrStatus(), 0);
        EXPECT_EQ(tqmGetMode(), mode);
        vdLn(1, &zero, &r);
        EXPECT_EQ(tqmGetErrStatus(), TQM_STATUS_SING) << "the thread's own again";
        errno = 0;
        vmdLn(1, &zero, &r, TQM_HA);
        EXPECT_EQ(errno, 0) << "how errors are dealt with was left to the thread";
        vmdLn(1, &zero, &r, TQM_ERRMODE_ERRNO);
        EXPECT_EQ(errno, 34);
        tqmSetErrorCallBack(forget);
        const uint32_t with_callback = tqmGetMode();
        vmdLn(1, &zero, &r, TQM_ERRMODE_CALLBACK);
        EXPECT_EQ(tqmGetMode(), with_callback);
        EXPECT_EQ(tqmGetErrorCallBack(), nullptr);
    });
}

// Words that no one should pass: an accuracy that is none counts as TQM_HA, the rest is kept or passed over.
TEST(CallMode, NonsenseIsHarmless) {
    in_new_thread([] {
        const double x[3] = {0.5, 2, 1e300};
        double expected[3], r[3];
        vdSqrt(3, x, expected);
        const uint32_t mode = tqmGetMode();
        for (const int64_t word :
             {int64_t(0), int64_t(0x0F), int64_t(0x04), INT64_MIN, int64_t(0xFFFFFFFF00000000),
              int64_t(0x3C0000), int64_t(0xF0000000), int64_t(0x200F), int64_t(0xFFF),
              int64_t(-1)}) {
            std::fill_n(r, 3, 42);
            vmdSqrt(3, x, r, word);
            for (int i = 0; i < 3; ++i)
                EXPECT_EQ(r[i], expected[i]) << std::hex << word;
            EXPECT_EQ(tqmGetMode(), mode) << std::hex << word;
        }
    });
}

} // namespace
