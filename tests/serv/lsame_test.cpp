// lsame_test.cpp - the comparison of option letters, over all pairs of bytes.
#include "vox/service.h"

#include <clocale>
#include <gtest/gtest.h>

namespace {

TEST(Lsame, FoldsLettersOfAsciiOnly) {
    std::setlocale(LC_ALL, ""); // must not matter
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const char x[] = {char(a), 'p'}, y[] = {char(b), 'q'};
            const int result = vox_serv_lsame(x, y);
            EXPECT_EQ(result, vox_serv_lsame(y, x));
            EXPECT_EQ(result, a == b || ((a ^ b) == 0x20 && (a | 0x20) >= 'a' && (a | 0x20) <= 'z'))
                << a << " " << b;
        }
    EXPECT_EQ(vox_serv_lsame(nullptr, "N"), 0);
    EXPECT_EQ(vox_serv_lsame("N", nullptr), 0);
    EXPECT_EQ(vox_serv_lsame(nullptr, nullptr), 0);
}

} // namespace
