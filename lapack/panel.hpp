// panel.hpp - what the kernels of panels and their callers agree on.
#pragma once

#include "serv/base.hpp"

namespace vox::lapack {

// The most columns of a panel that a kernel factors.
constexpr index_t panel_width = 16;

} // namespace vox::lapack
