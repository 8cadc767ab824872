// threader_test.cpp - how vectors are shared out, and what the threads of a call have of their caller.
#include "vm/threader.hpp"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/support/child.hpp"
#include "vm/errors.hpp"
#include "vm/kernel_index.hpp"
#include "vm/thread_block.hpp"
#include "vox/service.h"

namespace {

using test::run_child;
using vox::index_t;
using vox::vm::vox_tqm_serv_threader_d_1i_1o;
using vox::vm::vox_tqm_serv_threader_d_2i_1o;

// What a kernel saw: where its shares began, how long they were, and by which threads.
struct shares {
    std::mutex lock;
    std::set<std::pair<index_t, index_t>> parts;
    std::set<pid_t> threads;
} seen;
const double *whole;
uint32_t mode_seen;

void note(index_t n, const double *a) {
    const std::scoped_lock guard(seen.lock);
    seen.parts.emplace(a - whole, n);
    seen.threads.insert(gettid());
    mode_seen = tqmGetMode();
}
void kernel_1(index_t n, const double *a, double *r, double fixed) {
    note(n, a);
    for (index_t i = 0; i < n; ++i)
        r[i] = a[i] * fixed;
}
void kernel_2(index_t n, const double *a, const double *b, double *r, double fixed) {
    note(n, a);
    for (index_t i = 0; i < n; ++i)
        r[i] = a[i] * fixed + b[i];
}

// Reports every negative element.
void failing_kernel(index_t n, const double *a, double *r, double) {
    for (index_t i = 0; i < n; ++i)
        if ((r[i] = a[i]) < 0)
            vox::vm::report_element<double>(TQM_STATUS_ERRDOM,
                                            {a, i, &a[i], nullptr, &r[i], nullptr}, "vdLn");
}

std::mutex told_lock;
std::set<int> told;
int listen(tqmErrorContext *context) {
    const std::scoped_lock guard(told_lock);
    told.insert(context->iIndex);
    context->dbR1 = 1;
    return 0;
}

struct operands {
    std::vector<double> a, b, r;
    explicit operands(index_t n) : a(size_t(n)), b(size_t(n)), r(size_t(n)) {
        for (size_t i = 0; i < a.size(); ++i)
            a[i] = double(i), b[i] = 1000;
        whole = a.data();
        seen.parts.clear();
        seen.threads.clear();
    }
};

CHILD(split) {
    vox_set_dynamic(0);
    vox_domain_set_num_threads(4, VOX_DOMAIN_TQM);
    for (const index_t n : {1, 99, 100, 102, 1003}) {
        operands x(n);
        vox_tqm_serv_threader_d_1i_1o(kernel_1, n, x.a.data(), x.r.data(), 3, 0);
        for (index_t i = 0; i < n; ++i)
            if (x.r[size_t(i)] != 3 * double(i))
                std::printf("wrong at %ld of %ld\n", long(i), long(n));
        std::printf("%ld:", long(n));
        for (const auto &[first, count] : seen.parts)
            std::printf(" %ld+%ld", long(first), long(count));
        operands y(n);
        vox_tqm_serv_threader_d_2i_1o(kernel_2, n, y.a.data(), y.b.data(), y.r.data(), 2, 0);
        bool right = true;
        for (index_t i = 0; i < n; ++i)
            right = right && y.r[size_t(i)] == 2 * double(i) + 1000;
        std::printf(" %zu%s\n", seen.parts.size(), right ? "" : " wrong");
    }
}

TEST(Threader, SharesDifferByOneElementAtMost) {
    EXPECT_EQ(run_child(split).out, "1: 0+1 1\n"
                                    "99: 0+99 1\n"
                                    "100: 0+25 25+25 50+25 75+25 4\n"
                                    "102: 0+26 26+26 52+25 77+25 4\n"
                                    "1003: 0+251 251+251 502+251 753+250 4\n");
}

// Errors in the shares of several threads: indices of the whole vector, results from the callback, the status
// with the caller, whose own mode and callback all of them had.
CHILD(errors) {
    vox_set_dynamic(0);
    vox_domain_set_num_threads(3, VOX_DOMAIN_TQM);
    operands x(1000);
    for (const size_t i : {0, 7, 400, 999})
        x.a[i] = -1;
    tqmSetMode(TQM_EP | TQM_ERRMODE_CALLBACK);
    tqmSetErrorCallBack(listen);
    vox_tqm_serv_threader_d_1i_1o(failing_kernel, 1000, x.a.data(), x.r.data(), 0, 0);
    std::printf("status %d, at", tqmGetErrStatus());
    for (const int i : told)
        std::printf(" %d", i);
    std::printf(", results %g, base %d", x.r[0] + x.r[7] + x.r[400] + x.r[999],
                vox::vm::this_block.base != nullptr);
    vox_tqm_serv_threader_d_1i_1o(kernel_1, 1000, x.b.data(), x.r.data(), 1, 0);
    std::printf(", mode %x, then status %d\n", mode_seen, tqmGetErrStatus());
}

TEST(Threader, TheTeamIsItsCallers) {
    EXPECT_EQ(run_child(errors).out,
              "status 1, at 0 7 400 999, results 4, base 0, mode 1003, then status 0\n");
}

TEST(Threader, ThreadsMustPay) {
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000, 1, 2), 1);
    const int most = std::min(2, vox_serv_get_ncpus());
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000, 1000, 2), most);
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000000, 1, 2), most);
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1 << 30, 100, 1), 1);
}

CHILD(print_index) { std::printf("%d", vox::vm::kernel_index()); }

TEST(KernelIndex, CanBeOverriddenByWhatTheProcessorHas) {
    const std::string own = run_child(print_index).out;
    for (const char *index : {"0", "1", "2"}) // any processor runs these
        EXPECT_EQ(run_child(print_index, {{"VOX_TQM_CODE_PATH", index}}).out, index);
    for (const char *nonsense : {"10", "-1", "avx", "", "1x"})
        EXPECT_EQ(run_child(print_index, {{"VOX_TQM_CODE_PATH", nonsense}}).out, own) << nonsense;
}

TEST(KernelIndex, TablesHaveAnEntryForEachAccuracy) {
    EXPECT_EQ(vox::vm::table_index(9, TQM_LA), 9);
    EXPECT_EQ(vox::vm::table_index(0, TQM_HA), 10);
    EXPECT_EQ(vox::vm::table_index(7, TQM_EP), 27);
    EXPECT_EQ(vox::vm::accuracy_of(0x1A05), uint32_t(TQM_HA)); // no accuracy: the default
}

} // namespace
