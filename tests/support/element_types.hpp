// element_types.hpp - the types of elements that nearly every routine is there for.
#pragma once

#include <gtest/gtest.h>

#include "serv/scalar.hpp"

namespace test {

using element_types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;
using real_types = ::testing::Types<float, double>;

} // namespace test
