// relu.hpp - the object of ReLU, forward and backward.
#pragma once

#include "dnn/primitive.hpp"

namespace vox::dnn {

enum relu_direction : uint32_t { relu_forward = 1, relu_backward = 3 };

// What runs: one loop over flat arrays, or a nest of loops over the strides.
enum relu_kernel : uint32_t { relu_dense, relu_strided };

template <class T>
struct relu {
    primitive header;
    layout data;
    layout diff; // backward: of both gradients
    T slope;
    relu_direction direction;
    relu_kernel kernel;
};
static_assert(sizeof(relu<float>) == 2736 && sizeof(relu<double>) == 2736);
static_assert(offsetof(relu<float>, data) == 48 && offsetof(relu<float>, diff) == 1384 &&
              offsetof(relu<float>, slope) == 2720 && offsetof(relu<float>, direction) == 2724);

} // namespace vox::dnn
