// progress.cpp - the progress callback of long computations: replaceable as xerbla is, in the same
// order of spellings, or registered.
#include "serv/base.hpp"
#include "serv/handler_slot.hpp"
#include "serv/replaceable.hpp"
#include "vox/service.h"

namespace {

constinit vox::handler_slot<vox_progress_handler> registered;

} // namespace

extern "C" int vox_serv_default_progress(const vox_int *, const vox_int *, const char *, int) {
    return 0;
}

// What the exported names stand for unless the program defines them.
extern "C" int vox_own_progress(const vox_int *thread, const vox_int *step, const char *stage,
                                int stage_length) {
    return vox_serv_default_progress(thread, step, stage, stage_length);
}

VOX_WEAK_ALIAS(vox_progress, vox_own_progress);
VOX_WEAK_ALIAS(vox_progress_, vox_own_progress);
VOX_WEAK_ALIAS(VOX_PROGRESS, vox_own_progress);
VOX_WEAK_ALIAS(VOX_PROGRESS_, vox_own_progress);

extern "C" int vox_serv_progress(const vox_int *thread, const vox_int *step, const char *stage,
                                 int stage_length) {
    vox_progress_handler handler = registered.get();
    if (!handler)
        handler = vox::definition_in_force(vox_own_progress, vox_progress_, vox_progress,
                                           VOX_PROGRESS_, VOX_PROGRESS);
    asm("movl %0, %0" : "+r"(stage_length)); // clears the upper half for Fortran: see xerbla.cpp
    return handler(thread, step, stage, stage_length);
}

extern "C" vox_progress_handler vox_serv_set_progress(vox_progress_handler handler) {
    return registered.set(handler, vox_serv_default_progress);
}
VOX_ALIAS(vox_set_progress, vox_serv_set_progress);

extern "C" void vox_serv_set_progress_interface(vox_progress_handler handler) {
    registered.set_if_empty(handler);
}
