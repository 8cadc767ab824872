// handlers_test.cpp - the callbacks of exit and progress: the standard ones, the program's own, and
// back. Programs that define vox_progress themselves: replacement_test.
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

CHILD(leave_through_handlers) {
    std::atexit(say_bye);
    vox_set_exit_handler(first);
    vox_serv_exit(7);
    vox_serv_set_exit_handler(second);
    vox_serv_exit(-1);
    vox_serv_set_exit_handler(nullptr);
    vox_serv_exit(3);
}

TEST(Exit, CallsTheHandlerInForceAndGoesOnWhenItReturns) {
    const child_result result = run_child(leave_through_handlers);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "first 7, second -1, bye");
}

const vox_int thread = 2, step = 40;
const char stage[] = "DGETRF";

int calls;

// The four arguments arrive as they were given.
int handler(const vox_int *t, const vox_int *s, const char *name, int length) {
    ++calls;
    return t == &thread && s == &step && name == stage && length == 6 ? -9 : 0;
}

int other(const vox_int *, const vox_int *, const char *, int) { return 5; }

int call() { return vox_serv_progress(&thread, &step, stage, 6); }

TEST(Progress, PassesThroughToTheHandlerInForce) {
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(vox_serv_progress(nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(vox_set_progress(handler), vox_serv_default_progress);
    EXPECT_EQ(call(), -9);
    EXPECT_EQ(calls, 1);
    vox_serv_set_progress_interface(other); // the slot is taken
    EXPECT_EQ(call(), -9);
    EXPECT_EQ(vox_serv_set_progress(nullptr), handler);
    EXPECT_EQ(call(), 0);
    vox_serv_set_progress_interface(other);
    EXPECT_EQ(call(), 5);
    EXPECT_EQ(vox_serv_set_progress(vox_serv_default_progress), other);
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(vox_serv_set_progress(nullptr), vox_serv_default_progress);
    EXPECT_EQ(calls, 2);
    for (vox_progress_handler f : {vox_progress, vox_progress_, VOX_PROGRESS, VOX_PROGRESS_})
        EXPECT_EQ(f(&thread, &step, stage, 6), 0);
}

} // namespace
