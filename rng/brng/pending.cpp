// pending.cpp - generators that are not written yet.
#include "rng/registry.hpp"

#define VOX_PENDING(name)                                                                          \
    extern "C" int vox_rng_##name##_init(int, vox::rng::stream *, int, const uint32_t *) {         \
        return -2;                                                                                 \
    }                                                                                              \
    extern "C" int vox_rng_##name##_i(vox::rng::stream *, int, uint32_t *) { return -2; }          \
    extern "C" int vox_rng_##name##_s(vox::rng::stream *, int, float *, float, float) {            \
        return -2;                                                                                 \
    }                                                                                              \
    extern "C" int vox_rng_##name##_d(vox::rng::stream *, int, double *, double, double) {         \
        return -2;                                                                                 \
    }
VOX_PENDING(r250)
VOX_PENDING(mrg32k3a)
VOX_PENDING(mcg59)
VOX_PENDING(wh)
