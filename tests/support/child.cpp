// child.cpp - see child.hpp.
#include "tests/support/child.hpp"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

constexpr const char *child_variable = "TEST_CHILD";
constexpr unsigned time_limit_seconds = 200;

test::child_entry *entries = nullptr;

// How threads wait changes no result; the tests' own choice holds for children as well.
bool steers_the_library(const std::string &assignment) {
    if (assignment.starts_with("OMP_WAIT_POLICY="))
        return false;
    for (const char *prefix :
         {"VOX_", "OMP_", "KMP_", "MPI_", "OMPI_", "PMI_", "MV2_", "GOMP_", "NLSPATH="})
        if (assignment.compare(0, std::strlen(prefix), prefix) == 0)
            return true;
    return false;
}

std::vector<std::string> child_environment(const test::environment &settings) {
    std::vector<std::string> result;
    for (char **e = environ; *e; ++e) {
        std::string assignment = *e;
        bool keep = !steers_the_library(assignment);
        for (const auto &[name, value] : settings)
            keep = keep && assignment.compare(0, name.size() + 1, name + "=") != 0;
        if (keep)
            result.push_back(assignment);
    }
    for (const auto &[name, value] : settings)
        result.push_back(name + "=" + value);
    return result;
}

std::vector<char *> pointers(std::vector<std::string> &strings) {
    std::vector<char *> result;
    for (std::string &s : strings)
        result.push_back(s.data());
    result.push_back(nullptr);
    return result;
}

// Reads both pipes until the child has closed them.
void collect(int out, int err, test::child_result &result) {
    pollfd fds[2] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
    std::string *texts[2] = {&result.out, &result.err};
    int open = 2;
    while (open > 0) {
        poll(fds, 2, -1);
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0)
                continue;
            char buffer[4096];
            const ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                texts[i]->append(buffer, size_t(n));
            } else {
                close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            }
        }
    }
}

} // namespace

test::child_entry::child_entry(const char *entry_name, void (*entry_body)())
    : name(entry_name), body(entry_body), next(entries) {
    entries = this;
}

bool test::run_as_child() {
    const char *name = std::getenv(child_variable);
    if (!name)
        return false;
    for (child_entry *e = entries; e; e = e->next)
        if (std::strcmp(e->name, name) == 0) {
            unsetenv(child_variable);
            e->body();
            return true;
        }
    std::abort();
}

test::child_result test::run_child(const child_entry &entry, const environment &settings) {
    environment with_name = settings;
    with_name.emplace_back(child_variable, entry.name);
    return run_program({"/proc/self/exe"}, with_name);
}

void test::expect_said(const child_entry &entry, const char *variable,
                       const std::vector<std::string> &values, const std::string &expected,
                       const environment &others) {
    for (const std::string &value : values) {
        environment settings = others;
        settings.emplace_back(variable, value);
        const child_result r = run_child(entry, settings);
        EXPECT_EQ(r.out + r.err, expected) << variable << "=" << value.substr(0, 40);
    }
}

void test::expect_output(const child_entry &entry, const std::string &expected,
                         const environment &settings) {
    const child_result r = run_child(entry, settings);
    EXPECT_EQ(r.out + r.err, expected);
    EXPECT_EQ(r.status, 0) << entry.name << ", signal " << r.signal;
}

test::child_result test::run_program(const std::vector<std::string> &command,
                                     const environment &settings) {
    std::vector<std::string> words = command, variables = child_environment(settings);
    std::vector<char *> argv = pointers(words), envp = pointers(variables);
    int out[2], err[2];
    if (pipe(out) != 0 || pipe(err) != 0)
        std::abort();
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out[1], 1);
        dup2(err[1], 2);
        for (int fd : {out[0], out[1], err[0], err[1]})
            close(fd);
        alarm(time_limit_seconds); // outlives the exec
        environ = envp.data();
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    child_result result;
    collect(out[0], err[0], result);
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status))
        result.status = WEXITSTATUS(status);
    else
        result.signal = WTERMSIG(status);
    return result;
}
