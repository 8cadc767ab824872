// tasks.hpp - the threads that this process has at the moment, and new ones that run a test's code.
#pragma once

#include <filesystem>
#include <iterator>
#include <thread>
#include <vector>

namespace test {

// The first call makes a thread, and with it the one that a checker adds.
inline int tasks() {
    std::thread([] {}).join();
    const std::filesystem::directory_iterator all("/proc/self/task");
    return int(std::distance(begin(all), end(all)));
}

// Runs body(0), body(1), ..., body(count - 1) at once, each on a thread of its own, to their ends.
template <class Body>
void on_threads(int count, const Body &body) {
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t)
        threads.emplace_back([&body, t] { body(t); });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace test
