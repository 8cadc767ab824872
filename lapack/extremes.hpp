// extremes.hpp - the lesser and the greater of two numbers; of NaN, neither.
#pragma once

#include <type_traits>

#include "serv/base.hpp"

namespace vox::lapack {

[[gnu::always_inline]] constexpr index_t least(index_t a, index_t b) { return a < b ? a : b; }
[[gnu::always_inline]] constexpr index_t most(index_t a, index_t b) { return a > b ? a : b; }

template <class R>
requires std::is_floating_point_v<R>
[[gnu::always_inline]] constexpr R least(R a, R b) { return a < b ? a : b; }
template <class R>
requires std::is_floating_point_v<R>
[[gnu::always_inline]] constexpr R most(R a, R b) { return a > b ? a : b; }

} // namespace vox::lapack
