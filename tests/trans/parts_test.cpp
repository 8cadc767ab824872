// parts_test.cpp - which part of a matrix each thread takes.
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

#include "trans/drivers/parts.hpp"

namespace {

using vox::trans::part;
using vox::trans::part_of;

// Rows x columns + first row + first column, of each thread in turn.
struct division {
    int threads;
    int64_t rows, cols;
    const char *parts;
};

TEST(Parts, AreThoseOfTheTable) {
    const division table[] = {
        // powers of two: halves of the longer side, of the rows where neither is longer
        {2, 64, 64, "32x64+0+0 32x64+32+0"},
        {2, 64, 128, "64x64+0+0 64x64+0+64"},
        {4, 64, 64, "32x32+0+0 32x32+0+32 32x32+32+0 32x32+32+32"},
        {4, 128, 32, "32x32+0+0 32x32+32+0 32x32+64+0 32x32+96+0"},
        {4, 32, 256, "32x64+0+0 32x64+0+64 32x64+0+128 32x64+0+192"},
        {8, 2, 4, "1x1+0+0 1x1+0+1 1x1+0+2 1x1+0+3 1x1+1+0 1x1+1+1 1x1+1+2 1x1+1+3"},
        // otherwise the longer side, the last threads taking one more
        {3, 64, 64, "21x64+0+0 21x64+21+0 22x64+42+0"},
        {4, 30, 18, "7x18+0+0 7x18+7+0 8x18+14+0 8x18+22+0"},
        {2, 17, 100, "17x50+0+0 17x50+0+50"},
        {2, 64, 65, "64x32+0+0 64x33+0+32"},
        {4, 3, 2, "0x2+0+0 1x2+0+0 1x2+1+0 1x2+2+0"},
        {16, 2, 4,
         "2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 2x0+0+0 "
         "2x0+0+0 2x1+0+0 2x1+0+1 2x1+0+2 2x1+0+3"},
        {1, 5, 7, "5x7+0+0"},
    };
    for (const division &d : table) {
        std::ostringstream parts;
        for (int t = 0; t < d.threads; ++t) {
            const part p = part_of(t, d.threads, d.rows, d.cols);
            parts << (t ? " " : "") << p.rows << 'x' << p.cols << '+' << p.row << '+' << p.col;
        }
        EXPECT_EQ(parts.str(), d.parts) << d.threads << " threads, " << d.rows << " x " << d.cols;
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
