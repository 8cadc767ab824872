/* gnu_openmp.c - a program on GNU's OpenMP runtime calls the library from outside and inside its own
 * parallel regions. Inside, a call gets one thread; outside, as many as before. */
#include <omp.h>

#include "check.h"
#include "vox/vox.h"

enum { length = 100000 };
static double ones[length];

static void call_outside(int expected_threads) {
    CHECK(vox_get_max_threads() == expected_threads);
    CHECK(cblas_ddot(length, ones, 1, ones, -1) == length);
}

int main(void) {
    for (int i = 0; i < length; ++i)
        ones[i] = 1;
    const int threads = vox_get_max_threads();
    for (int round = 0; round < 5; ++round) {
        call_outside(threads);
        int wrong = 0;
#pragma omp parallel num_threads(4) reduction(+ : wrong)
        {
            wrong += omp_get_num_threads() != 4;
            wrong += vox_get_max_threads() != 1;
            wrong += cblas_ddot(length, ones, 1, ones, 1) != length;
        }
        CHECK(wrong == 0);
    }
    call_outside(threads);
    return 0;
}
