// child.hpp - runs a function of a test binary in a fresh process with its own environment.
//
// Settings are read once per process, so each environment needs a process of its own:
//
//   CHILD(max_threads) { std::printf("%d", vox_get_max_threads()); }
//
//   TEST(Threads, ABadNumberCountsAsOne) {
//       EXPECT_EQ(run_child(max_threads, {{"VOX_NUM_THREADS", "4x"}}).out, "1");
//   }
//
// The child is a new execution of the same binary. It inherits the parent's environment without the
// variables that steer the library (VOX_*, OMP_*, KMP_*, MPI's), then gets the ones given. A child
// that runs longer than 200 seconds is killed.
#pragma once

#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace test {

struct child_entry {
    const char *name;
    void (*body)();
    child_entry *next;
    child_entry(const char *name, void (*body)());
};

struct child_result {
    int status = -1; // exit status; -1 when a signal ended the child
    int signal = 0;
    std::string out, err;
};

using environment = std::vector<std::pair<std::string, std::string>>;

child_result run_child(const child_entry &entry, const environment &settings = {});

// With each of the variable's values the child says this, on either stream.
void expect_said(const child_entry &entry, const char *variable,
                 const std::vector<std::string> &values, const std::string &expected,
                 const environment &others = {});

// The child comes to its end and says this, on either stream.
void expect_output(const child_entry &entry, const std::string &expected,
                   const environment &settings = {});
inline void expect_success(const child_entry &entry, const environment &settings = {}) {
    expect_output(entry, "", settings);
}

// Runs any program the same way.
child_result run_program(const std::vector<std::string> &command, const environment &settings = {});

// The exit status of a forked child, which the body returns. A child that hangs is a failure.
template <class Body>
int in_forked_child(const Body &body) {
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(30);
        _exit(body());
    }
    int status = -1;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) ? WEXITSTATUS(status) : 1000;
}

// Runs the named child's body if this process was started as one; called by main.
bool run_as_child();

} // namespace test

#define CHILD(name)                                                                                \
    static void child_body_##name();                                                               \
    static const test::child_entry name(#name, child_body_##name);                                 \
    static void child_body_##name()

// A test whose body runs in a fresh process, with settings {"NAME", "value"}, ...: it is to come to
// its end and say nothing.
#define CHILD_TEST(suite, name, ...)                                                               \
    CHILD(suite##_##name);                                                                         \
    TEST(suite, name) { test::expect_success(suite##_##name, {__VA_ARGS__}); }                     \
    static void child_body_##suite##_##name()
