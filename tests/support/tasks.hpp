// tasks.hpp - the threads that this process has at the moment.
#pragma once

#include <filesystem>
#include <iterator>
#include <thread>

namespace test {

// The first call makes a thread, and with it the one that a checker adds.
inline int tasks() {
    std::thread([] {}).join();
    const std::filesystem::directory_iterator all("/proc/self/task");
    return int(std::distance(begin(all), end(all)));
}

} // namespace test
