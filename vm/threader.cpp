// threader.cpp - see threader.hpp.
#include "vm/threader.hpp"

#include <atomic>

#include "serv/parallel.hpp"
#include "vm/thread_block.hpp"
#include "vox/service.h"

namespace {

using namespace vox;
using namespace vox::vm;

constexpr index_t never_split = 100;

// A team that is awake starts and joins within 1.7 us (two cores, Zen 4), so shares of this length pay, whether
// a function computes or moves memory: there, too, two cores move more than one.
constexpr float region_ns = 3000, share_ns = 4000;

int team_size(index_t n, float cost) {
    if (n < never_split)
        return 1;
    const int threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_TQM);
    if (threads == 1 || !vox_serv_get_dynamic())
        return threads;
    return vox_tqm_serv_GetMinN(n, cost, threads);
}

// call(first, count) on all of n, by a team if that pays. The team has its caller's mode and callback; the
// caller gets a status of the team's.
template <class T, class Call>
void run(index_t n, const T *first_input, float cost, const Call &call) {
    const int threads = team_size(n, cost);
    if (threads <= 1)
        return call(0, n);
    const tqmErrorCallBack callback = tqmGetErrorCallBack();
    const uint64_t mode = tqmGetMode();
    std::atomic<int> shared{TQM_STATUS_OK};
    parallel(threads, [&](int thread, int team) {
        const thread_block before = this_block; // of the caller, or of a thread of the runtime's
        this_block = {mode, first_input, callback, TQM_STATUS_OK};
        const index_t q = n / team, rest = n % team;
        const index_t first = thread < rest ? (q + 1) * thread : q * thread + rest;
        if (const index_t count = thread < rest ? q + 1 : q)
            call(first, count);
        if (this_block.status != TQM_STATUS_OK)
            shared.store(this_block.status, std::memory_order_relaxed);
        this_block = before;
    });
    this_block.status = shared.load(std::memory_order_relaxed);
}

} // namespace

extern "C" int vox_tqm_serv_GetMinN(index_t n, float cost, int threads) {
    static constinit std::atomic<int> cores{0};
    int most = cores.load(std::memory_order_relaxed);
    if (most == 0) {
        most = vox_serv_get_ncpus();
        cores.store(most, std::memory_order_relaxed);
    }
    const float work_ns = float(n) * cost;
    if (work_ns < region_ns + share_ns)
        return 1;
    const float shares = work_ns / share_ns;
    const int limit = threads < most ? threads : most;
    return shares < float(limit) ? int(shares) : limit;
}

#define VOX_TQM_THREADER(p, T)                                                                     \
    extern "C" void vox_tqm_serv_threader_##p##_1i_1o(kernel_1i_1o<T> *kernel, index_t n,          \
                                                      const T *a, T *r, T fixed, float cost) {     \
        run(n, a, cost,                                                                            \
            [&](index_t first, index_t count) { kernel(count, a + first, r + first, fixed); });    \
    }                                                                                              \
    extern "C" void vox_tqm_serv_threader_##p##_2i_1o(                                             \
        kernel_2i_1o<T> *kernel, index_t n, const T *a, const T *b, T *r, T fixed, float cost) {   \
        run(n, a, cost, [&](index_t first, index_t count) {                                        \
            kernel(count, a + first, b + first, r + first, fixed);                                 \
        });                                                                                        \
    }
namespace vox::vm {
VOX_TQM_THREADERS(VOX_TQM_THREADER)
}
