// conversion.hpp - the primitive that copies a tensor from one layout to another, and the routines it chooses from.
#pragma once

#include "dnn/primitive.hpp"

namespace vox::dnn {

struct conversion;
// Copies between two buffers; a status. A reorder that is given none says whether it is for these layouts.
using routine = int(const conversion *, const void *from, void *to);

struct conversion {
    primitive head;
    layout from, to;
    routine *copy;
};
static_assert(sizeof(conversion) == 2728);

} // namespace vox::dnn

// The routines: Simple_To_Simple (plain) and those of the internal layouts by the pair of kinds, then the reorders in the
// order in which they are asked, then the one for whatever is left. X(P, T, name): vox_dnn_<path>_doConversion_...
#define VOX_DNN_COPIES(X, P, T)                                                                    \
    X(P, T, Simple_To_Simple)                                                                      \
    X(P, T, Simple_To_OrbData)                                                                     \
    X(P, T, Simple_To_OrbFilterFwd)                                                                \
    X(P, T, Simple_To_OrbFilterBwd)                                                                \
    X(P, T, OrbData_To_Simple)                                                                     \
    X(P, T, OrbFilterFwd_To_Simple)                                                                \
    X(P, T, OrbFilterBwd_To_Simple)                                                                \
    X(P, T, OrbData_To_OrbData)                                                                    \
    X(P, T, OrbFilterFwd_To_OrbFilterBwd)                                                          \
    X(P, T, OrbFilterBwd_To_OrbFilterFwd)

#define VOX_DNN_REORDERS(X, P, T)                                                                  \
    X(P, T, Simple_To_Weights8i8o)                                                                 \
    X(P, T, Simple_To_Weights8o8i)                                                                 \
    X(P, T, Simple_To_Weights16i16o)                                                               \
    X(P, T, Simple_To_Weights16o16i)                                                               \
    X(P, T, Weights8_To_Simple)                                                                    \
    X(P, T, Weights16_To_Simple)                                                                   \
    X(P, T, Simple_To_Image8)                                                                      \
    X(P, T, Simple_To_Image16)                                                                     \
    X(P, T, Image8_To_Simple)                                                                      \
    X(P, T, Image16_To_Simple)                                                                     \
    X(P, T, Weights_Exchanged)

namespace vox::dnn {

#define VOX_DNN_NAME(P, T, name) name,
enum class copy { VOX_DNN_COPIES(VOX_DNN_NAME, , ) };
enum class reorder { VOX_DNN_REORDERS(VOX_DNN_NAME, , ) };
#undef VOX_DNN_NAME

} // namespace vox::dnn

extern "C" {
// The name of a conversion's routine without path and precision, for tests: "Simple_To_OrbData", "Generic".
const char *vox_dnn_ConversionRoutine_F32(const vox::dnn::conversion *of);
const char *vox_dnn_ConversionRoutine_F64(const vox::dnn::conversion *of);
}
