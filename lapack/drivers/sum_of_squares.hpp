// sum_of_squares.hpp - a sum of squares that neither overflows nor underflows on its way.
//
// Three accumulators: large numbers are scaled down before they are squared, small ones up, the rest is
// taken as it is. J. L. Blue, "A Portable Fortran Program to Find the Euclidean Norm of a Vector", ACM TOMS
// 4(1), 1978; E. Anderson, "Algorithm 978: Safe Scaling in the Level 1 BLAS", ACM TOMS 44(1), 2017.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

template <class R>
class sum_of_squares {
    static constexpr bool single = sizeof(R) == sizeof(float);
    // numbers in [small, large] are squared as they are
    static constexpr R small = single ? R(0x1p-63) : R(0x1p-511);
    static constexpr R large = single ? R(0x1p52) : R(0x1p486);
    static constexpr R scale_up = single ? R(0x1p75) : R(0x1p537);
    static constexpr R scale_down = single ? R(0x1p-76) : R(0x1p-538);

  public:
    void add(R x) {
        const R size = x < 0 ? -x : x;
        if (size > large)
            large_ += (size * scale_down) * (size * scale_down);
        else if (size < small)
            small_ += (size * scale_up) * (size * scale_up);
        else // NaN, too
            medium_ += size * size;
    }

    // Adds scale^2 sum, sum >= 0, as lassq passes a sum on.
    void add(R scale, R sum) {
        if (!(sum > 0))
            return;
        const R size = scale * root(sum);
        if (size > large)
            scale *= scale_down, large_ += scale * (scale * sum);
        else if (size < small)
            scale *= scale_up, small_ += scale * (scale * sum);
        else
            medium_ += scale * (scale * sum);
    }

    void times(R factor) { small_ *= factor, medium_ *= factor, large_ *= factor; }

    // The whole as scale^2 sum.
    void get(R *scale, R *sum) const {
        if (large_ > 0) { // what is small does not count
            *scale = 1 / scale_down;
            *sum = large_ + (medium_ * scale_down) * scale_down;
        } else if (!(small_ > 0)) {
            *scale = 1;
            *sum = medium_;
        } else if (medium_ == 0) {
            *scale = 1 / scale_up;
            *sum = small_;
        } else { // by the larger root; NaN in either stays
            const R a = root(medium_), b = root(small_) / scale_up;
            const R most = a < b ? b : a, least = a < b ? a : b;
            *scale = 1;
            *sum = (most * most) * (1 + (least / most) * (least / most));
        }
    }
    R norm() const {
        R scale, sum;
        get(&scale, &sum);
        return scale * root(sum);
    }

  private:
    static float root(float x) { return __builtin_sqrtf(x); }
    static double root(double x) { return __builtin_sqrt(x); }

    R small_ = 0, medium_ = 0, large_ = 0;
};

} // namespace vox::lapack
