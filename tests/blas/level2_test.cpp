// level2_test.cpp - the numbers of level 2, on every code path: every routine in every form, over
// sizes past every unroll, all letters, and everything else drawn.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include "tests/blas/level2_draw.hpp"
#include "tests/blas/level2_reference.hpp"

namespace {

using namespace test;

template <class T>
class Level2 : public ::testing::Test {
  protected:
    // One call; sizes of a few random numbers decide everything that is not given.
    void expect_right(const routine<T> &r, vox_int m, vox_int n, int combination,
                      std::optional<plant> p = {}) {
        const drawn_call<T> d = draw(r, m, n, combination, lots);
        ASSERT_EQ(trial<T>(r, d.a, lots.number(), p).fault(d.call), "") << d;
    }
    lottery lots{1};
};
using types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;
TYPED_TEST_SUITE(Level2, types);

std::vector<vox_int> sizes() {
    std::vector<vox_int> all;
    for (vox_int n = 0; n <= 20; ++n)
        all.push_back(n);
    for (vox_int n : {31, 32, 33, 34, 35, 63, 64, 65, 66, 67})
        all.push_back(n);
    return all;
}

TYPED_TEST(Level2, StaysWithinTheErrorBoundsAndItsOperands) {
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (int combination = 0; combination < combinations(r); ++combination)
            for (int repeat = 0; repeat < 24; repeat += 2 * combinations(r))
                for (vox_int n : sizes())
                    this->expect_right(r, this->lots.pick({0, 1, 2, 3, 5, 17, n, n, n + 1, 40}), n,
                                       combination);
}

TYPED_TEST(Level2, AlsoForLargeAndExtremeShapes) {
    const struct {
        vox_int m, n;
        int repeats;
    } shapes[] = {{100, 100, 4}, {129, 129, 4}, {300, 300, 2}, {1030, 1030, 1},
                  {1, 500, 2},   {500, 1, 2},   {3, 1000, 2},  {1000, 3, 2}};
    for (const auto &s : shapes)
        for (const routine<TypeParam> &r : routines<TypeParam>())
            for (int repeat = 0; repeat < s.repeats && (s.m == s.n || r.has('m')); ++repeat)
                this->expect_right(r, s.m, s.n,
                                   int(this->lots.number() % unsigned(combinations(r))));
}

TYPED_TEST(Level2, CarriesNansAndInfinitiesWhereTheDefinitionDoes) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (vox_int n : {1, 2, 3, 4, 7, 9, 16, 31, 70})
            for (char operand : {'A', 'X', 'Y'})
                for (double value : {std::numeric_limits<double>::quiet_NaN(), inf, -inf})
                    for (int repeat = 0; repeat < 4; ++repeat)
                        this->expect_right(r, this->lots.pick({n, n + 3, 5}), n,
                                           int(this->lots.number() % unsigned(combinations(r))),
                                           plant{operand, value});
}

// Address space of which only the touched pages exist.
class sparse {
  public:
    explicit sparse(size_t elements) : bytes_(elements * sizeof(float)) {
        data_ = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (data_ == MAP_FAILED)
            std::abort();
    }
    ~sparse() { munmap(data_, bytes_); }
    float *data() const { return static_cast<float *>(data_); }

  private:
    size_t bytes_;
    void *data_;
};

// The elements 8 j + i, i < 8, lie at far j + i. Powers of two and small integers: no rounding.
TEST(Level2Offsets, ReachBeyond32Bits) {
    constexpr vox_int n = 3, far = 1 << 30;
    const sparse a(size_t(far) * n), x(size_t(far) * n), y(size_t(far) * n);
    for (const routine<float> &r : routines<float>())
        for (int combination = 0; combination < combinations(r); ++combination) {
            arguments<float> close;
            set_letters(r, combination, close);
            close.m = close.n = n;
            close.kl = close.ku = 1;
            close.lda = 8;
            close.incx = 8;
            close.incy = -8;
            close.alpha = close.beta = 2;
            arguments<float> distant = close;
            distant.lda = distant.incx = far;
            distant.incy = -far;
            const auto offset = [&r](int operand, int64_t k) {
                return k / 8 * (operand == 0 && !r.has('L') ? 8 : far) + k % 8;
            };
            std::vector<float> values[3];
            float *const spread[3] = {a.data(), x.data(), y.data()};
            for (int v = 0; v < 3; ++v)
                for (int64_t k = 0; k < 8 * n; ++k) {
                    values[v].push_back(v == 0 ? (k % 3 ? -1.0F : 2.0F) : float(k % 5 + 1));
                    spread[v][offset(v, k)] = values[v].back();
                }
            close.a = values[0].data();
            close.x = values[1].data();
            close.y = values[2].data();
            distant.a = spread[0];
            distant.x = spread[1];
            distant.y = spread[2];
            r.fortran(close);
            r.fortran(distant);
            for (int v = 0; v < 3; ++v)
                for (int64_t k = 0; k < 8 * n; ++k)
                    ASSERT_EQ(spread[v][offset(v, k)], values[v][size_t(k)])
                        << r.name << ' ' << combination;
        }
}

} // namespace
