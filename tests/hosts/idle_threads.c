/* idle_threads.c - a library that is loaded and not used costs no thread; one that was used has threads that
 * sleep. */
#include <dirent.h>
#include <string.h>
#include <time.h>

#include "check.h"
#include "vox/vox.h"

enum { n = 600 };
static double a[n * n], b[n * n], c[n * n];

struct tasks {
    int all, running;
};

/* The state stands behind the name, which may hold anything but ends at the last parenthesis. */
static struct tasks count(void) {
    struct tasks t = {0, 0};
    DIR *directory = opendir("/proc/self/task");
    CHECK(directory);
    for (struct dirent *e = readdir(directory); e; e = readdir(directory)) {
        char path[300], text[1000];
        if (e->d_name[0] == '.')
            continue;
        snprintf(path, sizeof path, "/proc/self/task/%s/stat", e->d_name);
        FILE *file = fopen(path, "r");
        if (!file)
            continue;
        text[fread(text, 1, sizeof text - 1, file)] = 0;
        fclose(file);
        const char *name_end = strrchr(text, ')');
        CHECK(name_end);
        ++t.all;
        t.running += name_end[2] == 'R';
    }
    closedir(directory);
    return t;
}

int main(void) {
    const int before = count().all; /* a checker may have one */
    vox_get_max_threads();
    CHECK(cblas_ddot(3, a, 1, a, 1) == 0);
    CHECK(count().all == before);
    vox_set_dynamic(0);
    vox_set_num_threads(4);
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, n, n, n, 1, a, n, b, n, 0, c, n);
    CHECK(count().all > before);
    struct tasks now;
    do { /* the time limit of the test ends this if they never sleep */
        const struct timespec pause = {0, 10 * 1000 * 1000};
        nanosleep(&pause, NULL);
        now = count();
    } while (now.running > 1); /* this thread */
    return 0;
}
