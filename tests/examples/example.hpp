// example.hpp - runs an example (PROGRAM) on the code path of this test, with files of the test's own.
#pragma once

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/child.hpp"
#include "tests/support/matches.hpp"
#include "tests/support/temporary.hpp"

namespace test {

class Example : public ::testing::Test {
  protected:
    // Writes a file and returns its name.
    std::string file(const std::string &name, const std::string &text) {
        std::ofstream(directory_ / name, std::ios::binary) << text;
        return directory_ / name;
    }

    static child_result run(const std::vector<std::string> &arguments) {
        const char *const type = std::getenv("VOX_DEBUG_CPU_TYPE");
        return run_with(arguments,
                        type ? environment{{"VOX_DEBUG_CPU_TYPE", type}} : environment{});
    }
    static child_result run_with(const std::vector<std::string> &arguments,
                                 const environment &settings) {
        std::vector<std::string> command{PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run_program(command, settings);
    }

    // The run ended with the status and one line on standard error: program, file, and what the pattern says.
    static void expect_failure(const child_result &r, int status, const std::string &file_name,
                               const std::string &pattern) {
        EXPECT_EQ(r.status, status) << r.out;
        const size_t at = r.err.find(": " + file_name);
        ASSERT_NE(at, r.err.npos) << r.err;
        std::string rest = r.err.substr(at + 2 + file_name.size());
        ASSERT_TRUE(rest.ends_with('\n')) << r.err;
        rest.pop_back();
        EXPECT_TRUE(matches(rest, pattern)) << r.err << "instead of " << pattern;
    }

    // The rest of the line that begins with the label.
    static std::string field(const std::string &output, const std::string &label) {
        const size_t at = output.find(label + ":");
        if (at == output.npos)
            return "";
        const size_t begin = output.find_first_not_of(' ', at + label.size() + 1);
        return output.substr(begin, output.find('\n', begin) - begin);
    }

    // What the example says of the code path, on the one asked for and on the processor's own.
    static void expect_code_paths(const std::vector<std::string> &arguments) {
        if (const char *const path = std::getenv("VOX_TEST_PATH")) {
            EXPECT_EQ(field(run(arguments).out, "code path"), path);
        }
        const std::string closed = field(run_with(arguments, {}).out, "code path");
        const std::string opened =
            field(run_with(arguments, {{"VOX_CPU_VENDOR", "ANY"}}).out, "code path");
        EXPECT_FALSE(opened.empty());
        if (closed != opened) {
            EXPECT_EQ(closed, "def (with VOX_CPU_VENDOR=ANY: " + opened + ")");
        }
    }

    temporary_directory directory_;
};

} // namespace test
