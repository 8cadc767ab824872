// threader_test.cpp - how vectors are shared out.
#include "vm/threader.hpp"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/child.hpp"
#include "vox/service.h"

namespace {

using test::run_child;
using vox::index_t;
using vox::vm::vox_tqm_serv_threader_d_1i_1o;
using vox::vm::vox_tqm_serv_threader_d_2i_1o;

// What a kernel saw: where its shares began, and how long they were.
std::mutex lock;
std::set<std::pair<index_t, index_t>> parts;
const double *whole;

void note(index_t n, const double *a) {
    const std::scoped_lock guard(lock);
    parts.emplace(a - whole, n);
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

struct operands {
    std::vector<double> a, b, r;
    explicit operands(index_t n) : a(size_t(n)), b(size_t(n)), r(size_t(n)) {
        for (size_t i = 0; i < a.size(); ++i)
            a[i] = double(i), b[i] = 1000;
        whole = a.data();
        parts.clear();
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
        for (const auto &[first, count] : parts)
            std::printf(" %ld+%ld", long(first), long(count));
        operands y(n);
        vox_tqm_serv_threader_d_2i_1o(kernel_2, n, y.a.data(), y.b.data(), y.r.data(), 2, 0);
        bool right = true;
        for (index_t i = 0; i < n; ++i)
            right = right && y.r[size_t(i)] == 2 * double(i) + 1000;
        std::printf(" %zu%s\n", parts.size(), right ? "" : " wrong");
    }
}

TEST(Threader, SharesDifferByOneElementAtMost) {
    EXPECT_EQ(run_child(split).out, "1: 0+1 1\n"
                                    "99: 0+99 1\n"
                                    "100: 0+25 25+25 50+25 75+25 4\n"
                                    "102: 0+26 26+26 52+25 77+25 4\n"
                                    "1003: 0+251 251+251 502+251 753+250 4\n");
}

TEST(Threader, ThreadsMustPay) {
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000, 1, 2), 1);
    const int most = std::min(2, vox_serv_get_ncpus());
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000, 1000, 2), most);
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1000000, 1, 2), most);
    EXPECT_EQ(vox::vm::vox_tqm_serv_GetMinN(1 << 30, 100, 1), 1);
}

} // namespace
