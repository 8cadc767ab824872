// workspace.hpp - sizes of work arrays as routines report them.
#pragma once

#include "lapack/block_sizes.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// A size in an element: no less than it is, where it has more digits than the type.
template <class T>
T work_size(index_t size) {
    using R = real_of<T>;
    const R near = R(size);
    constexpr R ulp = sizeof(R) == 4 ? R(0x1p-23) : R(0x1p-52);
    return make<T>(index_t(near) < size ? near * (1 + ulp) : near);
}

// What a blocked routine likes to have for `vectors` columns or rows, and never less than it must.
template <class T>
T best_work(algorithm which, index_t vectors) {
    return work_size<T>((vectors > 1 ? vectors : 1) * blocking_of(which).wide);
}

} // namespace vox::lapack
