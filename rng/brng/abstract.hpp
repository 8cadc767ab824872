// abstract.hpp - generators that take their numbers from a buffer of the user's, which a callback refills.
//
// The buffer is circular: the next number is at `index`, and `consumed` entries, up to the whole buffer, are
// free to be filled again. A callback is asked when every entry has been consumed and more are needed.
//
// The floating forms hold numbers of an interval [a, b), which are mapped onto u in [0, 1).
#pragma once

#include "rng/stream.hpp"
#include "vox/rsk.h"

namespace vox::rng {

struct iabstract_state {
    using element = uint32_t;
    int32_t n, index, consumed;
    uint32_t *buffer;
    rskiCallback callback;
};
struct dabstract_state {
    using element = double;
    int32_t n, index, consumed;
    double a, b;
    double *buffer;
    rskdCallback callback;
};
struct sabstract_state {
    using element = float;
    int32_t n, index, consumed;
    float a, b;
    float *buffer;
    rsksCallback callback;
};

// What stands in place of the seed words.
struct iabstract_parameters {
    const int32_t *n;
    uint32_t *buffer;
    rskiCallback callback;
};
struct dabstract_parameters {
    const int32_t *n;
    double *buffer;
    const double *a, *b;
    rskdCallback callback;
};
struct sabstract_parameters {
    const int32_t *n;
    float *buffer;
    const float *a, *b;
    rsksCallback callback;
};

} // namespace vox::rng
