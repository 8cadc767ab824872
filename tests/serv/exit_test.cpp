// exit_test.cpp - the end of the process: the standard one, the program's own, and back.
#include "vox/service.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

#include "tests/support/child.hpp"

namespace {

using namespace test;

void say_bye() { std::printf("bye"); }

void first(int status) { std::printf("first %d, ", status); }
void second(int status) { std::printf("second %d, ", status); }

CHILD(leave) {
    std::atexit(say_bye);
    vox_serv_exit(7);
    std::printf("not reached");
}

CHILD(leave_through_handlers) {
    vox_set_exit_handler(first);
    vox_serv_exit(7);
    vox_serv_set_exit_handler(second);
    vox_serv_exit(-1);
    vox_serv_set_exit_handler(nullptr);
    vox_serv_exit(3);
}

TEST(Exit, EndsTheProcessAsExitDoes) {
    const child_result result = run_child(leave);
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.out, "bye");
}

TEST(Exit, CallsTheHandlerInForceAndGoesOnWhenItReturns) {
    const child_result result = run_child(leave_through_handlers);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "first 7, second -1, ");
}

} // namespace
