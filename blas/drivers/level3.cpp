// level3.cpp - the drivers of level 3 but for gemm's own: how a product or a triangle is divided among
// threads.
#include "blas/drivers/level3.hpp"

#include <sched.h>

#include <atomic>

#include "blas/drivers/gemm_threads.hpp"
#include "blas/drivers/team.hpp"
#include "blas/kernel_api.hpp"
#include "blas/team_barrier.hpp"
#include "serv/dispatch.hpp"
#include "serv/scratch.hpp"

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH(blas, p##gemm_internal_team, void,                                                \
                 (const vox::product<T> *job, vox::product_team *team, int rank, int size),        \
                 (job, team, rank, size))                                                          \
    VOX_DISPATCH(blas, p##trmm, void, (const vox::triangle_product<T> *job), (job))                \
    VOX_DISPATCH(blas, p##trsm, void, (const vox::triangle_product<T> *job), (job))
VOX_PRECISIONS(DISPATCH)

extern "C" void vox_blas_team_wait(vox::team_barrier *barrier, int size) {
    std::atomic_ref<int> arrived(barrier->arrived), round(barrier->round);
    const int mine = round.load(std::memory_order_acquire);
    if (arrived.fetch_add(1, std::memory_order_acq_rel) == size - 1) {
        arrived.store(0, std::memory_order_relaxed);
        round.store(mine + 1, std::memory_order_release);
        return;
    }
    for (int turn = 0; round.load(std::memory_order_acquire) == mine; ++turn) {
        __builtin_ia32_pause();
        if (turn > 2000) // more threads than processors: somebody needs this one
            sched_yield();
    }
}

namespace vox {
namespace {

template <class T>
struct entries;
#define ENTRIES(p, P, T)                                                                           \
    template <>                                                                                    \
    struct entries<T> {                                                                            \
        static constexpr x##p##gemm_internal_team_dispatch team = {};                              \
        static constexpr x##p##trmm_dispatch trmm = {};                                            \
        static constexpr x##p##trsm_dispatch trsm = {};                                            \
    };
VOX_PRECISIONS(ENTRIES)

// As many threads as a product m x n x k would take.
template <class T>
int threads_for(index_t m, index_t n, index_t k) {
    return gemm_threads(vox_serv_cpu_detect(), gemm_weights_of<T>, m, n, k,
                        [] { return vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS); });
}

// Fewer than this many operations a thread are done sooner than the thread is woken.
constexpr double least_operations = 4e5;

template <class T>
int worthwhile(int threads, double operations) {
    const double most = operations * (is_complex<T> ? 4 : 1) / least_operations;
    return most < threads ? most < 1 ? 1 : int(most) : threads;
}

// C is a few tiles and the depth is all that there is to share: every thread multiplies a part of it,
// and the parts are added in order. That order depends on the number of threads, so it is not for
// reproducible calls.
template <class T>
bool split_depth(const product<T> &job, int threads) {
    constexpr index_t few = 64, deep = 2048;
    const bool packed = job.a.kind == structure::packed || job.b.kind == structure::packed;
    if (job.part != region::all || packed || job.m > few || job.n > few || job.k < deep * threads ||
        vox_serv_cbwr_get(1) != VOX_CBWR_OFF)
        return false;
    const scratch<T> sums((threads - 1) * job.m * job.n, 128);
    if (sums.empty())
        return false;
    const index_t step = (job.k + threads - 1) / threads;
    for_parts(threads, [&](index_t part) {
        product<T> mine = job;
        const auto at = [&](factor<T> f, bool columns) {
            f.data += (columns != f.transposed ? f.ld : 1) * part * step;
            return f;
        };
        mine.a = at(job.a, true), mine.b = at(job.b, false);
        mine.k = job.k - part * step < step ? job.k - part * step : step;
        if (part) {
            mine.beta = T{};
            mine.c = sums.data() + (part - 1) * job.m * job.n, mine.ldc = job.m;
        }
        entries<T>::team(&mine, nullptr, 0, 1);
    });
    for (index_t part = 0; part < threads - 1; ++part)
        for (index_t j = 0; j < job.n; ++j)
            for (index_t i = 0; i < job.m; ++i)
                job.c[i + j * job.ldc] += sums[(part * job.n + j) * job.m + i];
    return true;
}

// A triangle's other dimension, a part for each thread.
template <class T, class Kernel>
void share_others(Kernel kernel, const triangle_product<T> &job) {
    const index_t order = job.left ? job.m : job.n, others = job.left ? job.n : job.m;
    if (VOX_LIKELY(surely_serial<T>(order, others, order / 2 + 1)))
        return kernel(&job);
    const int threads = worthwhile<T>(threads_for<T>(order, others, order / 2 + 1),
                                      double(order) * double(order) * double(others));
    const index_t multiple = 8, most = (others + multiple - 1) / multiple;
    const index_t parts = most < threads ? most : threads;
    if (parts <= 1)
        return kernel(&job);
    for_parts(parts, [&](index_t part) {
        const range mine = even_part(part, parts, {0, others}, multiple);
        triangle_product<T> piece = job;
        (job.left ? piece.n : piece.m) = mine.end - mine.first;
        piece.b += mine.first * (job.left ? job.ldb : 1);
        if (mine.first < mine.end)
            kernel(&piece);
    });
}

// alpha = 0: B := 0, and the triangle is not read.
template <class T>
bool only_zeros(const triangle_product<T> &job) {
    if (job.m <= 0 || job.n <= 0)
        return true;
    if (!is_zero(job.alpha))
        return false;
    for (index_t j = 0; j < job.n; ++j)
        for (index_t i = 0; i < job.m; ++i)
            job.b[i + j * job.ldb] = T{};
    return true;
}

} // namespace

template <class T>
void multiply_in_parallel(const product<T> &job, int threads) {
    const double operations = 2.0 * double(job.m) * double(job.n) * double(job.k);
    threads = worthwhile<T>(threads, job.part == region::all ? operations : operations / 2);
    if (threads > 1 && split_depth(job, threads))
        return;
    product_team team;
    parallel(threads, [&](int rank, int size) { entries<T>::team(&job, &team, rank, size); });
}

template <class T>
void multiply(const product<T> &job) {
    if (job.m <= 0 || job.n <= 0)
        return;
    const index_t depth = job.part == region::all ? job.k : job.k / 2;
    if (VOX_LIKELY(surely_serial<T>(job.m, job.n, depth)))
        return entries<T>::team(&job, nullptr, 0, 1);
    multiply_in_parallel(job, threads_for<T>(job.m, job.n, depth));
}

template <class T>
void triangle_multiply(const triangle_product<T> &job) {
    if (!only_zeros(job))
        share_others(entries<T>::trmm, job);
}

template <class T>
void triangle_solve(const triangle_product<T> &job) {
    if (!only_zeros(job))
        share_others(entries<T>::trsm, job);
}

#define INSTANCES(p, P, T)                                                                         \
    template void multiply_in_parallel<T>(const product<T> &, int);                                \
    template void multiply<T>(const product<T> &);                                                 \
    template void triangle_multiply<T>(const triangle_product<T> &);                               \
    template void triangle_solve<T>(const triangle_product<T> &);
VOX_PRECISIONS(INSTANCES)

} // namespace vox

#define OMP_DRIVER(p, P, T)                                                                        \
    extern "C" void vox_blas_##p##gemm_omp_driver_v1(const vox::product<T> *job) {                 \
        vox::multiply_in_parallel(*job, vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS));         \
    }
VOX_PRECISIONS(OMP_DRIVER)
