// progress_test.cpp - the progress callback: nothing by default, a registered handler, restoring.
// Programs that define vox_progress themselves: replacement_test.
#include "vox/service.h"

#include <gtest/gtest.h>

namespace {

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
