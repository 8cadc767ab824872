// SOBOL and NIEDERR without memory for their rows.
#include <gtest/gtest.h>

#include "tests/rng/generator.hpp"
#include "tests/support/failing_memory.hpp"

namespace {

using test::generator;
using words = std::vector<uint32_t>;

struct refuse {
    explicit refuse(int request) {
        test::memory_requests = 0;
        test::refused_request = request;
    }
    ~refuse() { test::refused_request = 0; }
};

TEST(QuasiMemory, SeedingAnswersThatThereIsNone) {
    const words seeds = {2, RSK_QUASI_POLYNOMIALS, 1, 2, 3};
    const words expected = generator(RSK_BRNG_NIEDERR, seeds).integers(10);
    int failures = 0;
    for (int request = 1;; ++request, ++failures) {
        ASSERT_LE(request, 10);
        refuse now(request);
        generator g(RSK_BRNG_NIEDERR, seeds);
        if (g.status == 0) {
            EXPECT_EQ(g.integers(10), expected);
            break;
        }
        EXPECT_EQ(g.status, RSK_ERROR_NO_MEMORY);
        words r(10, 77);
        if (g.handle) {
            EXPECT_EQ(g.fill(r.data(), 10), vox::rng::bad_state);
            EXPECT_EQ(r, words(10, 77));
        }
    }
    EXPECT_GE(failures, 1);
}

TEST(QuasiMemory, ACoordinateIsNotSelectedWithoutIt) {
    generator g(RSK_BRNG_SOBOL, {10}), same(RSK_BRNG_SOBOL, {10});
    {
        refuse now(test::every_request);
        EXPECT_EQ(rskLeapfrogStream(g.handle, 3, 0x7FFFFFFF), RSK_ERROR_NO_MEMORY);
    }
    EXPECT_EQ(g.integers(100), same.integers(100));
}

} // namespace
