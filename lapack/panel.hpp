// panel.hpp - what the kernels of panels and their callers agree on.
#pragma once

#include "serv/base.hpp"

namespace vox::lapack {

// The columns of the panels that a matrix is divided into, and the most that a kernel factors.
constexpr index_t panel_width = 16, widest_panel = 24;

// The largest order of an inverse that a kernel completes.
constexpr index_t small_inverse = 32;

} // namespace vox::lapack
