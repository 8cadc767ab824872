// level2_threads_test.cpp - level 2 on several threads, and for several callers at once: the numbers
// of every routine on shapes that are worth dividing, in ways that do not come out even.
#include <gtest/gtest.h>
#include <thread>

#include "tests/blas/level2_draw.hpp"
#include "tests/blas/level2_reference.hpp"

namespace {

using namespace test;

// What is wrong with a call on an m by n matrix, everything else drawn.
template <class T>
std::string fault(const routine<T> &r, vox_int m, vox_int n, lottery &lots) {
    const drawn_call<T> d = draw(r, m, n, int(lots.number() % unsigned(combinations(r))), lots);
    const std::string found = trial<T>(r, d.a, lots.number()).fault(d.call);
    return found.empty() ? "" : (std::ostringstream() << d << ": " << found).str();
}

class Threads : public ::testing::Test {
  protected:
    void SetUp() override { vox_set_dynamic(0); } // as many threads as asked for, cores or not
    void TearDown() override {
        vox_set_num_threads_local(0);
        vox_set_dynamic(1);
    }
};
template <class T>
class Level2Threads : public Threads {};
using types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;
TYPED_TEST_SUITE(Level2Threads, types);

TYPED_TEST(Level2Threads, AnyNumberOfThemStaysWithinTheErrorBounds) {
    lottery lots(1);
    for (int threads : {2, 3, 7}) {
        vox_set_num_threads_local(threads);
        for (const routine<TypeParam> &r : routines<TypeParam>()) {
            std::vector<std::pair<vox_int, vox_int>> shapes = {{701, 701}};
            if (r.has('k'))
                shapes = {{20011, 20011}};
            if (r.has('m'))
                shapes.insert(shapes.end(), {{3, 30011}, {30011, 3}, {150, 4001}, {4001, 150}});
            for (const auto &[m, n] : shapes)
                EXPECT_EQ(fault(r, m, n, lots), "") << threads << " threads";
        }
    }
}

template <class T>
std::string some_faults(unsigned caller) {
    lottery lots(caller);
    std::string faults;
    for (int call = 0; call < 25; ++call) {
        const routine<T> &r = routines<T>()[lots.number() % routines<T>().size()];
        faults += fault(r, 310 + vox_int(caller), 310 + 7 * call, lots);
    }
    return faults;
}

TEST_F(Threads, ManyCallersAtOnceEachGetTheirOwnResults) {
    constexpr unsigned callers = 8;
    std::string faults[callers];
    std::vector<std::thread> team;
    for (unsigned c = 0; c < callers; ++c)
        team.emplace_back([c, &faults] {
            vox_set_num_threads_local(int(c % 3) + 1);
            faults[c] = some_faults<float>(c) + some_faults<double>(c) +
                        some_faults<vox_complex_float>(c) + some_faults<vox_complex_double>(c);
        });
    for (std::thread &t : team)
        t.join();
    for (const std::string &f : faults)
        EXPECT_EQ(f, "");
}

} // namespace
