/* check.h - the assertion of the host programs: says what failed and ends the process with
 * status 1. */
#ifndef VOX_TESTS_HOSTS_CHECK_H
#define VOX_TESTS_HOSTS_CHECK_H

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                        \
            _exit(1);                                                                              \
        }                                                                                          \
    } while (0)

#endif
