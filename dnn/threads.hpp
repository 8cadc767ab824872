// threads.hpp - how primitives spread their work: the threading table, and a division by work on top.
//
// The thread count is settled by the first create call or execution of the process. While the maximum is
// another one later, primitives run on one thread: kernels have planned for that count and no other.
#pragma once

#include "vox/service.h"

extern "C" {
using vox_dnn_body = void(int thread, int team, void *argument);

struct vox_dnn_threading {
    int (*threads)();
    void (*parallel)(vox_dnn_body *body, void *argument);
    void (*barrier)();
    int (*has_barrier)();
};
const vox_dnn_threading *vox_dnn_getTtl_F32();
const vox_dnn_threading *vox_dnn_getTtl_F64();

// The settled count, or 0 while the maximum is another one.
int vox_dnn_getNThreads_F32();
int vox_dnn_getNThreads_F64();

// body(thread, team, argument) by every thread of a team; by the calling thread alone as body(0, 1, argument).
void vox_dnn_do_parallel_F32(vox_dnn_body *body, void *argument);
void vox_dnn_do_parallel_F64(vox_dnn_body *body, void *argument);

// Called in a body by all threads of a team of two or more: returns when each has come.
void vox_dnn_do_global_barrier_F32();
void vox_dnn_do_global_barrier_F64();
int vox_dnn_is_barrier_supported_F32();
int vox_dnn_is_barrier_supported_F64();
}

namespace {
namespace dnn {

// Less work than this, in bytes moved, is done by the calling thread before a team has begun.
constexpr uint64_t divided_bytes = 256 * 1024;

// body(thread, team) by a team, or as body(0, 1) where there is little to do.
template <class Body>
inline void divide(uint64_t bytes, const Body &body) {
    if (bytes < divided_bytes)
        return body(0, 1);
    vox_dnn_do_parallel_F32(
        [](int thread, int team, void *argument) {
            (*static_cast<const Body *>(argument))(thread, team);
        },
        const_cast<Body *>(&body));
}

// The part of 0 .. n-1 that a thread takes, the first ones one more than the rest.
struct part {
    int64_t begin, end;
};
inline part part_of(int64_t thread, int64_t team, int64_t n) {
    if (team == 1)
        return {0, n};
    int64_t length;
    const int64_t begin = vox_serv_divbythreads(&thread, &team, &n, &length);
    return {begin, begin + length};
}

} // namespace dnn
} // namespace
