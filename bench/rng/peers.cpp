// peers.cpp - see peers.hpp. Compiled for this machine, as the templates of these libraries would be by users.
#include "bench/rng/peers.hpp"

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>

#if __has_include(<gsl/gsl_rng.h>)
#include <gsl/gsl_qrng.h>
#include <gsl/gsl_rng.h>
#define HAVE_GSL 1
#endif
#if __has_include(<Random123/philox.h>)
#include <Random123/ars.h>
#include <Random123/philox.h>
#endif

const char *const random_peers::memory = "memset",
                  *const random_peers::std_uniform = "std::mt19937_64, uniform_real_distribution",
                  *const random_peers::std_normal = "std::mt19937_64, normal_distribution",
                  *const random_peers::std_exponential =
                      "std::mt19937_64, exponential_distribution",
                  *const random_peers::std_poisson = "std::mt19937_64, poisson_distribution",
                  *const random_peers::gsl_mt19937 = "GSL mt19937, uniform",
                  *const random_peers::gsl_sobol = "GSL Sobol, 10 dimensions",
                  *const random_peers::random123_philox = "Random123 philox4x32, words",
                  *const random_peers::random123_ars = "Random123 ars4x32, words";

namespace {

using namespace random_peers;

alignas(64) double doubles[count];
alignas(64) uint32_t words[count];
alignas(64) int integers[count];

// The compiler must not know that nobody looks at what is written.
template <class T>
void written(T &block) {
    asm volatile("" : "+m"(block));
}

template <class Distribution, class T>
peer of_std(const char *name, Distribution distribution, T (&block)[count]) {
    return {name, [distribution, engine = std::mt19937_64(1), &block]() mutable {
                for (T &x : block)
                    x = distribution(engine);
                written(block);
            }};
}

#if HAVE_GSL
peer of_gsl_generator() {
    std::shared_ptr<gsl_rng> g(gsl_rng_alloc(gsl_rng_mt19937), gsl_rng_free);
    return {gsl_mt19937, [g] {
                for (double &x : doubles)
                    x = gsl_rng_uniform(g.get());
                written(doubles);
            }};
}
peer of_gsl_sobol() {
    std::shared_ptr<gsl_qrng> q(gsl_qrng_alloc(gsl_qrng_sobol, dimensions), gsl_qrng_free);
    return {gsl_sobol, [q] {
                for (int i = 0; i < count; i += dimensions)
                    gsl_qrng_get(q.get(), doubles + i);
                written(doubles);
            }};
}
#endif

// Blocks of four words, the counter counted up.
template <class Generator>
[[maybe_unused]] peer of_random123(const char *name, typename Generator::key_type key) {
    return {name, [key, counter = typename Generator::ctr_type{}]() mutable {
                Generator generator;
                for (int i = 0; i < count; i += 4) {
                    const auto block = generator(counter, key);
                    std::memcpy(words + i, block.data(), sizeof block);
                    counter.incr();
                }
                written(words);
            }};
}

} // namespace

std::vector<peer> random_peers::all_peers() {
    std::vector<peer> all = {
        {memory,
         [] {
             std::memset(doubles, 0, sizeof doubles);
             written(doubles);
         }},
        of_std(std_uniform, std::uniform_real_distribution<>(), doubles),
        of_std(std_normal, std::normal_distribution<>(), doubles),
        of_std(std_exponential, std::exponential_distribution<>(), doubles),
        of_std(std_poisson, std::poisson_distribution<>(poisson_mean), integers)};
#if HAVE_GSL
    all.push_back(of_gsl_generator());
    all.push_back(of_gsl_sobol());
#endif
#ifdef R123_USE_PHILOX_64BIT
    all.push_back(of_random123<r123::Philox4x32>(random123_philox, {{1, 2}}));
#if R123_USE_AES_NI
    all.push_back(of_random123<r123::ARS4x32_R<5>>(random123_ars, {{1, 2, 3, 4}}));
#endif
#endif
    return all;
}
