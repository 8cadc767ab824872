// threads.cpp - see threads.hpp. Both precisions share one count.
#include "dnn/threads.hpp"

#include <atomic>

#include "serv/parallel.hpp"

namespace {

constinit std::atomic<int> settled{-1};

} // namespace

extern "C" int vox_dnn_getNThreads_F32() {
    const int most = vox_serv_get_max_threads();
    const int count = settled.load(std::memory_order_relaxed);
    if (count != -1)
        return count == most ? count : 0;
    settled.store(most, std::memory_order_relaxed); // racing threads store the same
    return most;
}

extern "C" void vox_dnn_do_parallel_F32(vox_dnn_body *body, void *argument) {
    vox::parallel(vox_dnn_getNThreads_F32(),
                  [=](int thread, int team) { body(thread, team, argument); });
}

extern "C" void vox_dnn_do_global_barrier_F32() { vox::wait_for_team(); }

extern "C" int vox_dnn_is_barrier_supported_F32() { return 1; }

extern "C" const vox_dnn_threading *vox_dnn_getTtl_F32() {
    static constexpr vox_dnn_threading table = {vox_dnn_getNThreads_F32, vox_dnn_do_parallel_F32,
                                                vox_dnn_do_global_barrier_F32,
                                                vox_dnn_is_barrier_supported_F32};
    return &table;
}

VOX_ALIAS(vox_dnn_getTtl_F64, vox_dnn_getTtl_F32);
VOX_ALIAS(vox_dnn_getNThreads_F64, vox_dnn_getNThreads_F32);
VOX_ALIAS(vox_dnn_do_parallel_F64, vox_dnn_do_parallel_F32);
VOX_ALIAS(vox_dnn_do_global_barrier_F64, vox_dnn_do_global_barrier_F32);
VOX_ALIAS(vox_dnn_is_barrier_supported_F64, vox_dnn_is_barrier_supported_F32);
