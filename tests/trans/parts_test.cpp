// parts_test.cpp - which part of a matrix each thread takes.
#include <gtest/gtest.h>
#include <vector>

#include "trans/drivers/parts.hpp"

namespace {

using vox::trans::part;
using vox::trans::part_of;

struct division {
    int threads;
    int64_t rows, cols;
    std::vector<part> parts;
};

TEST(Parts, AreThoseOfTheTable) {
    const division table[] = {
        // powers of two: halves of the longer side, of the rows where neither is longer
        {2, 64, 64, {{0, 0, 32, 64}, {32, 0, 32, 64}}},
        {2, 64, 128, {{0, 0, 64, 64}, {0, 64, 64, 64}}},
        {4, 64, 64, {{0, 0, 32, 32}, {0, 32, 32, 32}, {32, 0, 32, 32}, {32, 32, 32, 32}}},
        {4, 128, 32, {{0, 0, 32, 32}, {32, 0, 32, 32}, {64, 0, 32, 32}, {96, 0, 32, 32}}},
        {4, 32, 256, {{0, 0, 32, 64}, {0, 64, 32, 64}, {0, 128, 32, 64}, {0, 192, 32, 64}}},
        {8,
         2,
         4,
         {{0, 0, 1, 1},
          {0, 1, 1, 1},
          {0, 2, 1, 1},
          {0, 3, 1, 1},
          {1, 0, 1, 1},
          {1, 1, 1, 1},
          {1, 2, 1, 1},
          {1, 3, 1, 1}}},
        // otherwise the longer side, the last threads taking one more
        {3, 64, 64, {{0, 0, 21, 64}, {21, 0, 21, 64}, {42, 0, 22, 64}}},
        {4, 30, 18, {{0, 0, 7, 18}, {7, 0, 7, 18}, {14, 0, 8, 18}, {22, 0, 8, 18}}},
        {2, 17, 100, {{0, 0, 17, 50}, {0, 50, 17, 50}}},
        {2, 64, 65, {{0, 0, 64, 32}, {0, 32, 64, 33}}},
        {4, 3, 2, {{0, 0, 0, 2}, {0, 0, 1, 2}, {1, 0, 1, 2}, {2, 0, 1, 2}}},
        {16,
         2,
         4,
         {{0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 0},
          {0, 0, 2, 1},
          {0, 1, 2, 1},
          {0, 2, 2, 1},
          {0, 3, 2, 1}}},
        {1, 5, 7, {{0, 0, 5, 7}}},
    };
    for (const division &d : table)
        for (int t = 0; t < d.threads; ++t) {
            const part got = part_of(t, d.threads, d.rows, d.cols), &wanted = d.parts[size_t(t)];
            EXPECT_TRUE(got.row == wanted.row && got.col == wanted.col && got.rows == wanted.rows &&
                        got.cols == wanted.cols)
                << "thread " << t << " of " << d.threads << ", " << d.rows << " x " << d.cols
                << ": " << got.row << ", " << got.col << ", " << got.rows << " x " << got.cols;
        }
}

TEST(Parts, CoverEveryElementOnce) {
    for (int threads : {1, 2, 3, 4, 7, 8, 16, 64})
        for (int64_t rows : {1, 2, 7, 16, 17, 64})
            for (int64_t cols : {1, 3, 8, 31, 128}) {
                std::vector<int> taken(size_t(rows * cols));
                for (int t = 0; t < threads; ++t) {
                    const part p = part_of(t, threads, rows, cols);
                    for (int64_t i = p.row; i < p.row + p.rows; ++i)
                        for (int64_t j = p.col; j < p.col + p.cols; ++j)
                            ++taken[size_t(i * cols + j)];
                }
                EXPECT_EQ(taken, std::vector<int>(taken.size(), 1))
                    << threads << " threads, " << rows << " x " << cols;
            }
}

} // namespace
