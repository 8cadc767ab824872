// vectors_test.cpp - a result depends on its arguments and on nothing else: not on its place, the alignment, the
// length, the form of the call, the vector that it goes to, or the threads; and nothing beside the vectors is
// touched.
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "tests/support/guarded.hpp"
#include "tests/support/thread_counts.hpp"
#include "tests/vm/functions.hpp"
#include "tests/vm/kernel_sets.hpp"

namespace {

using namespace test;

constexpr int longest = 70; // more than two turns of any kernel, and all tails
constexpr int many = 1003;  // for threads

// Arguments from all strata, with special ones, so that fix-ups take part; and the result of each alone.
template <class T>
struct pool {
    explicit pool(const vector_function<T> &function) : f(function) {
        samples<T> s(2 * many);
        f.strata(s);
        const T fixed = s.b[s.b.size() / 2];
        for (size_t i = 0; i < many; ++i) {
            a.push_back(s.a[i * 7919 % s.a.size()]);
            b.push_back(f.shape == arguments::fixed ? fixed : s.b[i * 7919 % s.a.size()]);
        }
        const T inf = std::numeric_limits<T>::infinity();
        const T special[] = {0,
                             T(-0.0),
                             inf,
                             -inf,
                             -1,
                             std::numeric_limits<T>::quiet_NaN(),
                             std::numeric_limits<T>::denorm_min(),
                             std::numeric_limits<T>::max()};
        for (size_t i = 0; i < std::size(special); ++i) // at odd distances, among the first
            a[3 + i * 7] = special[i];
    }
    void compute_alone(int accuracy) {
        mode = accuracy | TQM_ERRMODE_NOERR;
        alone.resize(many);
        for (size_t i = 0; i < many; ++i)
            f.vm(1, &a[i], &b[i], &alone[i], mode);
    }
    // Whether r has the bits of the elements from `first` on.
    bool same(const T *r, size_t first, size_t n) const {
        return std::memcmp(r, &alone[first], n * sizeof(T)) == 0;
    }

    const vector_function<T> &f;
    std::vector<T> a, b, alone;
    int64_t mode = 0;
};

template <class T, class Body>
void for_every_kernel(const Body &body) {
    for (const vector_function<T> &f : vector_functions<T>()) {
        pool<T> p(f);
        in_every_kernel_set([&](int index, int accuracy) {
            SCOPED_TRACE(testing::Message()
                         << f.name << " index " << index << " accuracy " << accuracy);
            p.compute_alone(accuracy);
            body(p);
        });
    }
}

using real_types = testing::Types<float, double>;
template <class T>
class Vectors : public testing::Test {};
TYPED_TEST_SUITE(Vectors, real_types);

template <class T>
std::vector<T> part(const std::vector<T> &v, size_t first, int n) {
    return {v.begin() + long(first), v.begin() + long(first) + n};
}

// At the end of a page all but the longest vectors are unaligned, at its beginning all are aligned; the next page,
// or the one before, is protected.
TYPED_TEST(Vectors, OfAllLengthsEndAndBeginAnywhere) {
    using T = TypeParam;
    for_every_kernel<T>([](const pool<T> &p) {
        for (int n = 1; n <= longest; ++n)
            for (const edge where : {edge::back, edge::front}) {
                const auto first = size_t(n % 13);
                guarded<T> a(part(p.a, first, n), where), b(part(p.b, first, n), where);
                guarded<T> r(std::vector<T>(size_t(n) + 16, T(42)), edge::front);
                a.freeze();
                b.freeze();
                p.f.vm(n, a.data(), b.data(), r.data(), p.mode);
                ASSERT_TRUE(p.same(r.data(), first, size_t(n))) << n;
                for (int i = n; i < n + 16; ++i)
                    ASSERT_EQ(r.data()[i], 42) << n << " elements, and another one at " << i;
                guarded<T> at_end(std::vector<T>(size_t(n)), edge::back);
                p.f.vm(n, a.data(), b.data(), at_end.data(), p.mode);
                ASSERT_TRUE(p.same(at_end.data(), first, size_t(n))) << n;
            }
    });
}

TYPED_TEST(Vectors, MayBeOverwrittenByTheResults) {
    using T = TypeParam;
    for_every_kernel<T>([](const pool<T> &p) {
        for (const int n : {1, 7, 16, 65, many}) {
            std::vector<T> a = part(p.a, 0, n), b = part(p.b, 0, n);
            p.f.vm(n, a.data(), b.data(), a.data(), p.mode);
            ASSERT_TRUE(p.same(a.data(), 0, size_t(n))) << "r is a, n = " << n;
            if (p.f.shape != arguments::two)
                continue;
            a = part(p.a, 0, n);
            p.f.vm(n, a.data(), b.data(), b.data(), p.mode);
            ASSERT_TRUE(p.same(b.data(), 0, size_t(n))) << "r is b, n = " << n;
            std::vector<T> r(a.size()), same = a;
            p.f.vm(n, a.data(), a.data(), r.data(), p.mode);
            p.f.vm(n, same.data(), same.data(), same.data(), p.mode);
            ASSERT_EQ(std::memcmp(r.data(), same.data(), size_t(n) * sizeof(T)), 0)
                << "all are one, n = " << n;
        }
    });
}

TYPED_TEST(Vectors, GiveTheSameBitsWithAnyNumberOfThreads) {
    using T = TypeParam;
    const thread_counts counts;
    for_every_kernel<T>([&](const pool<T> &p) {
        for (const int threads : {1, 2, 3, 4}) {
            counts.set(threads);
            std::vector<T> r(many);
            p.f.vm(many, p.a.data(), p.b.data(), r.data(), p.mode);
            ASSERT_TRUE(p.same(r.data(), 0, many)) << threads << " threads";
        }
    });
}

// The mode of the thread, of the call, in C and in Fortran.
TYPED_TEST(Vectors, AreTheSameInAllForms) {
    using T = TypeParam;
    const uint32_t before = tqmGetMode();
    for_every_kernel<T>([](const pool<T> &p) {
        std::vector<T> r(many);
        for (const auto form : {p.f.v, p.f.v_lower, p.f.v_upper}) {
            tqmSetMode(uint32_t(p.mode));
            std::fill(r.begin(), r.end(), T(42));
            form(many, p.a.data(), p.b.data(), r.data());
            ASSERT_TRUE(p.same(r.data(), 0, many));
        }
        tqmSetMode(TQM_HA | TQM_ERRMODE_NOERR);
        for (const auto form : {p.f.vm, p.f.vm_lower, p.f.vm_upper}) {
            std::fill(r.begin(), r.end(), T(42));
            form(many, p.a.data(), p.b.data(), r.data(), p.mode);
            ASSERT_TRUE(p.same(r.data(), 0, many));
        }
    });
    tqmSetMode(before);
}

// Both baseline sets have one kernel, of the highest accuracy.
TYPED_TEST(Vectors, OfTheBaselineAreInTheHighestAccuracy) {
    using T = TypeParam;
    for (const vector_function<T> &f : vector_functions<T>()) {
        pool<T> p(f);
        for (const int index : {0, 1}) {
            vox::vm::known_index = index;
            p.compute_alone(TQM_HA);
            for (const int accuracy : {TQM_LA, TQM_EP}) {
                std::vector<T> r(many);
                f.vm(many, p.a.data(), p.b.data(), r.data(), accuracy | TQM_ERRMODE_NOERR);
                EXPECT_TRUE(p.same(r.data(), 0, many)) << f.name << ' ' << index << ' ' << accuracy;
            }
        }
    }
    vox::vm::known_index = -1;
}

} // namespace
