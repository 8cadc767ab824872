// peers.hpp - what other libraries make of a block of random numbers. A block is `count` numbers.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace random_peers {

constexpr int count = 10000;
constexpr int dimensions = 10; // of quasi-random points

struct peer {
    std::string name;
    std::function<void()> fill;
};

// Those that were installed when this was compiled.
std::vector<peer> all_peers();

// memset of a block of doubles, which is what a fill can be compared with at most.
extern const char *const memory,
    *const std_uniform, *const std_normal, *const std_exponential,
                                               *const std_poisson, *const gsl_mt19937,
                                                                       *const gsl_sobol,
                                                                           *const random123_philox,
                                                                               *const random123_ars;

constexpr double poisson_mean = 20;

} // namespace random_peers
