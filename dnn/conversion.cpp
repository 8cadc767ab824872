// conversion.cpp - the dispatching entries of what tests ask of a conversion.
#include "dnn/conversion.hpp"

#include "serv/dispatch.hpp"

#define ROUTINE_NAME(P)                                                                            \
    VOX_DISPATCH_NAMED(dnn, ConversionRoutine_##P, ConversionRoutine_##P, const char *,            \
                       (const vox::dnn::conversion *of), (of))
ROUTINE_NAME(F32)
ROUTINE_NAME(F64)
