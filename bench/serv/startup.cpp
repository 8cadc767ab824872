// startup.cpp - what linking the library costs a program that calls nothing.
//
// Starts three programs in turns: an empty one, one that links the OpenMP runtime alone and one
// that links the library; prints the best and the median time from spawn to exit of each.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char **environ;

namespace {

double run_once(const char *program) {
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    char *arguments[] = {const_cast<char *>(program), nullptr};
    if (posix_spawn(&pid, program, nullptr, nullptr, arguments, environ) != 0)
        std::abort();
    int status = 0;
    waitpid(pid, &status, 0);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main() {
    const char *const programs[] = {STARTUP_EMPTY, STARTUP_OPENMP, STARTUP_VOX};
    const char *const names[] = {"empty program", "links the OpenMP runtime", "links libvox"};
    std::vector<double> times[3];
    for (int round = 0; round < 200; ++round)
        for (int i = 0; i < 3; ++i)
            times[i].push_back(run_once(programs[i]));
    for (int i = 0; i < 3; ++i) {
        std::sort(times[i].begin(), times[i].end());
        std::printf("%-26s best %.3f ms, median %.3f ms\n", names[i], times[i].front() * 1e3,
                    times[i][times[i].size() / 2] * 1e3);
    }
}
