// verbose_lines.hpp - what a program printed in verbose mode.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace test {

// Lines for calls begin so, in this order, maybe with others between them.
inline void expect_verbose_lines(const std::string &out, const std::vector<std::string> &lines) {
    size_t from = 0;
    for (const std::string &line : lines) {
        const size_t found = out.find("\nVOX_VERBOSE " + line, from);
        ASSERT_NE(found, out.npos) << line << " in " << out;
        from = found + 1;
    }
}

} // namespace test
