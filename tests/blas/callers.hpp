// callers.hpp - several callers at once.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/thread_counts.hpp"

namespace test {

// faults.operator()<T>(caller) says what is wrong with some calls for each type, made by this caller with
// threads of its own.
template <class Faults>
void expect_each_gets_its_own_results(const Faults &faults) {
    const thread_counts counts;
    std::vector<std::string> found(8);
    std::vector<std::thread> team;
    for (unsigned c = 0; c < found.size(); ++c)
        team.emplace_back([&, c] {
            counts.set(int(c % 3) + 1);
#define ADD_FAULTS(p, P, T) found[c] += faults.template operator()<T>(c);
            VOX_PRECISIONS(ADD_FAULTS)
#undef ADD_FAULTS
        });
    for (std::thread &t : team)
        t.join();
    EXPECT_EQ(found, std::vector<std::string>(found.size()));
}

} // namespace test
