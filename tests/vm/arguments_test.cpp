// arguments_test.cpp - counts and pointers that are wrong, in every form of every function: what is reported, and
// that nothing is computed.
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/child.hpp"
#include "tests/vm/functions.hpp"
#include "vox/service.h"

namespace {

using namespace test;

struct {
    std::string name;
    int position = 0, calls = 0;
} reported;

} // namespace

// The program's own takes the library's place.
extern "C" void xerbla_(const char *name, const vox_int *position, int length) {
    reported = {std::string(name, size_t(length)), int(*position), reported.calls + 1};
}

namespace {

tqmErrorContext told;
int listen(tqmErrorContext *context) {
    told = *context;
    return 0;
}

template <class T>
struct vectors {
    T a = 2, b = 3, r = 42;
};

// A function's forms: by the mode of the thread, and by the call's.
template <class T, class Call>
void in_all_forms(const vector_function<T> &f, const Call &call) {
    const std::string name = f.name, with_mode = "vm" + name.substr(1);
    for (const auto form : {f.v, f.v_lower, f.v_upper})
        call(name, form);
    for (const auto form : {f.vm, f.vm_lower, f.vm_upper})
        call(with_mode, [form](vox_int n, const T *a, const T *b, T *r) {
            form(n, a, b, r, TQM_LA | TQM_ERRMODE_NOERR); // not in force yet
        });
}

template <class T>
void check(const vector_function<T> &f) {
    struct row {
        vox_int n;
        bool a, b, r; // those that are not null
        int position; // 0: nothing is wrong
    };
    const int last = f.shape == arguments::one ? 3 : 4;
    std::vector<row> rows = {
        {-1, true, true, true, 1},    {INT32_MIN, true, true, true, 1},
        {-5, false, true, false, 1}, // the first one counts
        {1, false, true, true, 2},    {INT32_MAX, false, true, false, 2},
        {7, true, true, false, last}, {0, false, true, false, 0},
        {0, true, true, true, 0},
    };
    if (f.shape == arguments::two)
        rows.insert(rows.end(), {{1, true, false, true, 3}, {1, true, false, false, 3}});
    in_all_forms(f, [&](const std::string &name, const auto &form) {
        for (const row &c : rows) {
            SCOPED_TRACE(testing::Message() << name << " n " << c.n << " position " << c.position);
            vectors<T> v;
            reported = {};
            told = {};
            tqmSetErrStatus(99);
            const uint32_t mode = tqmGetMode();
            form(c.n, c.a ? &v.a : nullptr, c.b ? &v.b : nullptr, c.r ? &v.r : nullptr);
            EXPECT_EQ(v.r, 42);
            EXPECT_EQ(tqmGetMode(), mode);
            EXPECT_EQ(reported.calls, c.position != 0);
            EXPECT_EQ(reported.position, c.position);
            if (c.position == 0) {
                EXPECT_EQ(tqmGetErrStatus(), 99) << "an empty call leaves the status alone";
                continue;
            }
            const int status = c.n < 0 ? TQM_STATUS_BADSIZE : TQM_STATUS_BADMEM;
            EXPECT_EQ(reported.name, name);
            EXPECT_EQ(tqmGetErrStatus(), status);
            EXPECT_EQ(told.iCode, status);
            EXPECT_EQ(told.cFuncName, name);
            EXPECT_EQ(told.iFuncNameLen, int(name.size()));
            if (status == TQM_STATUS_BADSIZE) {
                EXPECT_EQ(told.iIndex, c.n);
            }
        }
    });
}

TEST(Arguments, WrongOnesAreReportedAndNothingIsComputed) {
    tqmSetErrorCallBack(listen);
    for (const auto &f : vector_functions<float>())
        check(f);
    for (const auto &f : vector_functions<double>())
        check(f);
    tqmClearErrorCallBack();
}

TEST(Arguments, WrongOnesSetErrnoAsTheModeAsks) {
    double x = 1;
    for (const uint32_t mode : {TQM_ERRMODE_ERRNO, TQM_ERRMODE_IGNORE, TQM_ERRMODE_NOERR}) {
        tqmSetMode(mode);
        const bool acts = mode == TQM_ERRMODE_ERRNO, records = mode != TQM_ERRMODE_NOERR;
        tqmClearErrStatus();
        errno = 0;
        vdExp(-1, &x, &x);
        EXPECT_EQ(errno, acts ? 22 : 0);
        EXPECT_EQ(tqmGetErrStatus(), records ? TQM_STATUS_BADSIZE : 0);
        errno = 0;
        vdExp(1, &x, nullptr);
        EXPECT_EQ(errno, acts ? 13 : 0);
        EXPECT_EQ(tqmGetErrStatus(), records ? TQM_STATUS_BADMEM : 0);
    }
    tqmSetMode(TQM_DEFAULT_MODE);
}

// They come before the mode of the call is in force.
CHILD(wrong_arguments) {
    double x = 1;
    vmdAdd(5, &x, nullptr, &x, TQM_ERRMODE_STDERR);
    tqmSetMode(TQM_ERRMODE_STDERR);
    vmdAdd(5, &x, &x, nullptr, TQM_ERRMODE_IGNORE);
    const vox_int n = -2;
    const float b = 1;
    const int64_t mode = TQM_ERRMODE_NOERR;
    vmspowx_(&n, nullptr, &b, nullptr, &mode);
}

TEST(Arguments, ArePrintedAsTheThreadsModeAsks) {
    EXPECT_EQ(run_child(wrong_arguments).err,
              "Error (TQM_STATUS_BADMEM) in vmdAdd: NULL pointer is passed.\n"
              "Error (TQM_STATUS_BADSIZE) in vmsPowx: array size -2 is not positive.\n");
}

} // namespace
