// services.cpp - the services of LAPACKE: the switch of the NaN check, reports, option letters.
#include <atomic>
#include <stdlib.h>

#include "lapack/lapacke/helpers.hpp"
#include "serv/environment.hpp"
#include "vox/lapacke.h"
#include "vox/service.h"

namespace {

constexpr int unset = -1;
constinit std::atomic<int> nancheck{unset};

} // namespace

extern "C" void LAPACKE_set_nancheck(int flag) {
    nancheck.store(flag != 0, std::memory_order_relaxed);
}

extern "C" int LAPACKE_get_nancheck(void) {
    int state = nancheck.load(std::memory_order_relaxed);
    if (VOX_LIKELY(state != unset))
        return state;
    const vox::env_value<256> value("LAPACKE_NANCHECK");
    const int found = !value.present() || atol(value.text) != 0;
    // someone may have set it meanwhile: that holds, and is what `state` becomes
    return nancheck.compare_exchange_strong(state, found, std::memory_order_relaxed) ? found
                                                                                     : state;
}

extern "C" void LAPACKE_xerbla(const char *name, vox_int info) {
    if (info == vox::lapacke::no_work_memory)
        vox_serv_printf_s("Not enough memory to allocate work array in %s\n", name);
    else if (info == vox::lapacke::no_transpose_memory)
        vox_serv_printf_s("Not enough memory to transpose matrix in %s\n", name);
    else if (info < 0)
        vox_serv_printf_s("Wrong parameter %lld in %s\n", -(long long)info, name);
}

extern "C" vox_int LAPACKE_lsame(char ca, char cb) { return vox_serv_lsame(&ca, &cb); }
