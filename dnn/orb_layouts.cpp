// orb_layouts.cpp - the code path's choice of internal layouts, see orb_layouts.hpp.
#include "dnn/orb_layouts.hpp"

#include "serv/dispatch.hpp"

#define FILL(P, name, sizes)                                                                       \
    VOX_DISPATCH_NAMED(dnn, LayoutFill##name##_##P, LayoutFill##name##_##P, int,                   \
                       (vox::dnn::layout * l, const vox::dnn::sizes *of), (l, of))
#define FILLS(P)                                                                                   \
    FILL(P, OrbData, image_sizes)                                                                  \
    FILL(P, OrbFilterFwd, filter_sizes)                                                            \
    FILL(P, OrbFilterBwd, filter_sizes)
FILLS(F32)
FILLS(F64)
