// look_ahead.hpp - the order of a factorisation by panels: while the rest of the matrix is updated with
// one panel, the next, which is updated first, is factored already, so that no thread waits for it.
#pragma once

#include <atomic>

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/one_thread.hpp"
#include "serv/parallel.hpp"
#include "vox/service.h"

namespace vox::lapack {

// Of vectors (columns, say) of `length`, `count` of them, in panels of nb.
template <class T>
class look_ahead {
  public:
    look_ahead(index_t length, index_t count, index_t nb)
        : nb_(nb), panels_end_(least(length, count)), count_(count), chunk_(chunk_of(length)),
          threads_(threads_for(length, count)) {}

    // Elements that run() is to be given: a panel's width for each vector of a chunk, for each thread.
    index_t work() const { return threads_ * each(); }

    // Steps has, for the panel at j with its factors in one of two slots:
    //   factor(j, slot)                          which may go on beside updates of later vectors
    //   update(j, slot, first, count, work)      of some vectors
    //   finish(j, slot)                          after all updates
    template <class Steps>
    void run(const Steps &steps, T *work) const {
        const one_thread scope;
        steps.factor(0, 0);
        int slot = 0;
        for (index_t j = 0; j < panels_end_; j += nb_, slot = !slot) {
            const index_t next = least(j + nb_, panels_end_);
            const index_t ahead = least(nb_, panels_end_ - next);
            std::atomic<index_t> first = next + ahead;
            const auto part = [&](int rank, int) {
                const one_thread inside;
                T *const mine = work + rank * each();
                if (rank == 0 && ahead > 0) {
                    steps.update(j, slot, next, ahead, mine);
                    steps.factor(next, !slot);
                }
                for (;;) {
                    const index_t at = first.fetch_add(chunk_, std::memory_order_relaxed);
                    if (at >= count_)
                        break;
                    steps.update(j, slot, at, least(chunk_, count_ - at), mine);
                }
            };
            const bool worth_it = count_ - next > 2 * chunk_;
            parallel(worth_it ? threads_ : 1, part);
            steps.finish(j, slot);
        }
    }

  private:
    // A chunk stays in the second-level cache from the first product to the second, unless vectors are
    // too long for that.
    static constexpr index_t chunk_bytes = 512 * 1024, least_chunk = 24, most_chunk = 96;
    static index_t chunk_of(index_t length) {
        const index_t fitting = chunk_bytes / index_t(sizeof(T)) / length / 8 * 8;
        return fitting ? least(most(fitting, least_chunk), most_chunk) : most_chunk;
    }
    // Smaller problems are done before other threads have come.
    static int threads_for(index_t length, index_t count) {
        constexpr double least_operations = 1e8;
        const double k = double(least(length, count));
        const double operations = 2 * double(length) * double(count) * k * (is_complex<T> ? 4 : 1);
        return operations < least_operations ? 1 : vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    }
    index_t each() const { return nb_ * most(nb_, chunk_); }

    index_t nb_, panels_end_, count_, chunk_;
    int threads_;
};

} // namespace vox::lapack
