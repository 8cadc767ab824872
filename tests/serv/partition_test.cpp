// partition_test.cpp - the three ways of dividing 0 .. n-1 among threads.
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "vox/service.h"

namespace {

struct part {
    int64_t start, length;
    bool operator==(const part &) const = default;
};

// Any of the three functions, with or without its further argument.
template <auto divide, class... More>
part part_of(int64_t t, int64_t threads, int64_t n, More... more) {
    part p{-1, -1};
    p.start = divide(&t, &threads, &n, &more..., &p.length);
    return p;
}
constexpr auto plain = part_of<vox_serv_divbythreads>;
constexpr auto blocks = part_of<vox_serv_divbythreadsnb, int64_t>;
constexpr auto triangle = part_of<vox_serv_divbythreadstr, char>;

constexpr int64_t huge = (int64_t(1) << 62) + 12345;

const std::vector<int64_t> sizes = {1, 2, 3, 5, 10, 63, 64, 65, 1000, 123457, huge - 1, huge};
const std::vector<int64_t> team_sizes = {1, 2, 3, 4, 7, 64, 1000};

// No gap, no overlap, nothing left over.
template <class Divide>
void expect_cover(int64_t threads, int64_t n, const Divide &divide) {
    int64_t next = 0;
    for (int64_t t = 0; t < threads; ++t) {
        const part p = divide(t);
        ASSERT_GE(p.length, 0) << "thread " << t << " of " << threads << ", n " << n;
        ASSERT_TRUE(p.length == 0 || p.start == next)
            << "thread " << t << " of " << threads << ", n " << n << " starts at " << p.start;
        next += p.length;
    }
    ASSERT_EQ(next, n) << threads << " threads";
}

TEST(Partition, EveryIndexBelongsToExactlyOneThread) {
    for (int64_t n : sizes)
        for (int64_t threads : team_sizes) {
            expect_cover(threads, n, [&](int64_t t) { return plain(t, threads, n); });
            for (int64_t nb : {-1, 0, 1, 8, 1000})
                expect_cover(threads, n, [&](int64_t t) { return blocks(t, threads, n, nb); });
            for (char uplo : {'U', 'L', 'u', 'l'})
                expect_cover(threads, n, [&](int64_t t) { return triangle(t, threads, n, uplo); });
        }
}

TEST(Partition, ThreadsOutsideTheTeamAndEmptyRangesGetNothing) {
    const struct {
        int64_t t, threads, n;
    } cases[] = {{-1, 4, 10}, {4, 4, 10}, {huge, 4, 10}, {1, 1, 10},  {1, 0, 10},
                 {-1, 0, 10}, {0, 4, 0},  {3, 4, 0},     {0, 4, -10}, {0, 1, -10}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.t << " of " << c.threads << ", n " << c.n);
        for (const part p :
             {plain(c.t, c.threads, c.n), blocks(c.t, c.threads, c.n, 4),
              triangle(c.t, c.threads, c.n, 'U'), triangle(c.t, c.threads, c.n, 'L')})
            EXPECT_EQ(p.length, 0);
    }
    for (int64_t threads : {1, 0, -3}) // fewer than two: thread 0 gets everything
        for (const part p :
             {plain(0, threads, 10), blocks(0, threads, 10, 4), triangle(0, threads, 10, 'U')})
            EXPECT_EQ(p, (part{0, 10}));
}

TEST(Partition, PlainPartsDifferByOneAndTheLongerComeFirst) {
    const std::vector<part> ten_by_four = {{0, 3}, {3, 3}, {6, 2}, {8, 2}};
    for (int64_t t = 0; t < 4; ++t)
        EXPECT_EQ(plain(t, 4, 10), ten_by_four[size_t(t)]) << t;
    for (int64_t t = 0; t < 5; ++t) // more threads than indices
        EXPECT_EQ(plain(t, 5, 3).length, t < 3 ? 1 : 0) << t;
}

TEST(Partition, BlocksStayWholeAndTheLastThreadTakesTheRemainder) {
    const struct {
        int64_t n;
        part parts[3];
    } cases[] = {
        {35, {{0, 16}, {16, 8}, {24, 11}}}, // in blocks of 8: four blocks and 3
        {7, {{0, 0}, {0, 0}, {0, 7}}},      // not one whole block
    };
    for (const auto &[n, parts] : cases)
        for (int64_t t = 0; t < 3; ++t) {
            const part p = blocks(t, 3, n, 8), want = parts[t];
            EXPECT_EQ(p.length, want.length) << "n " << n << ", thread " << t;
            EXPECT_TRUE(want.length == 0 || p.start == want.start) << "n " << n << ", " << t;
        }
}

// Elements of the rows [start, start + length) of a triangle of order n.
long double area(part p, int64_t n, bool upper) {
    const long double a = (long double)p.start, l = (long double)p.length;
    return l * (upper ? (long double)n - a - (l - 1) / 2 : a + (l + 1) / 2);
}

TEST(Partition, TrianglesAreCutIntoAreasWithinOneRowOfTheIdeal) {
    for (int64_t n : {1, 2, 3, 5, 10, 64, 65, 1000, 123457, 100000000})
        for (int64_t threads : {2, 3, 4, 7, 64, 1000})
            for (char uplo : {'U', 'L'})
                for (int64_t t = 0; t < threads; ++t) {
                    const long double ideal =
                        (long double)n * (long double)(n + 1) / 2 / (long double)threads;
                    const long double got = area(triangle(t, threads, n, uplo), n, uplo == 'U');
                    // A row has at most n elements.
                    ASSERT_LE(std::fabs(got - ideal), (long double)n)
                        << "thread " << t << " of " << threads << ", n " << n << uplo;
                }
}

TEST(Partition, TheCaseOfUploDoesNotMatterAndTheTrianglesMirrorEachOther) {
    for (int64_t n : {1, 7, 100, 4099})
        for (int64_t t = 0; t < 5; ++t) {
            EXPECT_EQ(triangle(t, 5, n, 'u'), triangle(t, 5, n, 'U'));
            EXPECT_EQ(triangle(t, 5, n, 'l'), triangle(t, 5, n, 'L'));
            const part upper = triangle(t, 5, n, 'U'), lower = triangle(4 - t, 5, n, 'L');
            EXPECT_EQ(upper.start + upper.length, n - lower.start);
            EXPECT_EQ(upper.length, lower.length);
        }
}

} // namespace
