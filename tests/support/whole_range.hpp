// whole_range.hpp - numbers of all sizes and both signs, complex ones with parts of different size.
#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "serv/scalar.hpp"

namespace test {

template <class T>
std::vector<T> whole_range() {
    using R = vox::real_of<T>;
    using limits = std::numeric_limits<R>;
    const R sizes[] = {0,
                       limits::denorm_min() * 3,
                       limits::min(),
                       std::sqrt(limits::min()),
                       std::sqrt(limits::min()) * 5,
                       R(1) / 1024,
                       1,
                       R(1.5),
                       700,
                       std::sqrt(limits::max()) / 7,
                       std::sqrt(limits::max()),
                       limits::max() / 8};
    std::vector<T> all;
    for (R re : sizes)
        if constexpr (vox::is_complex<T>)
            for (R im : sizes)
                all.push_back({all.size() % 2 ? re : -re, all.size() % 3 ? im : -im});
        else
            for (R sign : {R(1), R(-1)})
                all.push_back(sign * re);
    return all;
}

} // namespace test
