// vectors.hpp - vectors of the level 2 drivers: any increment, perhaps to be read conjugated, and
// pieces of them made contiguous for the kernels.
//
// Pieces are small enough for the stack of any thread, so no driver needs memory that it might not
// get.
#pragma once

#include <type_traits>

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox {

// Element i of a vector of n, counted from its end if the increment is negative.
template <class T>
class strided {
  public:
    strided(T *first, index_t n, index_t increment, bool conjugate = false)
        : first_(increment < 0 ? first - (n - 1) * increment : first), increment_(increment),
          conjugate_(conjugate && is_complex<std::remove_const_t<T>>) {}

    operator strided<const T>() const requires(!std::is_const_v<T>) {
        strided<const T> same;
        same.first_ = first_;
        same.increment_ = increment_;
        same.conjugate_ = conjugate_;
        return same;
    }

    T &operator[](index_t i) const { return first_[i * increment_]; }
    std::remove_const_t<T> get(index_t i) const { return conj_if(conjugate_, (*this)[i]); }

    // Null if the elements must be copied to be contiguous and as they are to be read.
    T *contiguous() const { return increment_ == 1 && !conjugate_ ? first_ : nullptr; }

  private:
    friend strided<std::remove_const_t<T>>;
    strided() = default;

    T *first_;
    index_t increment_;
    bool conjugate_;
};

// Elements of a piece: four of them are alive in the deepest driver.
template <class T>
constexpr index_t piece = 4096 / index_t(sizeof(T));

template <class T>
constexpr index_t end_of_piece(index_t first, index_t end) {
    return end - first < piece<T> ? end : first + piece<T>;
}

// Elements first .. end - 1 of a vector that is read, addressed by their number in the vector.
template <class T>
class piece_to_read {
  public:
    const T *at(const strided<const T> &v, index_t first, index_t end) {
        if (const T *const whole = v.contiguous())
            return whole;
        for (index_t i = first; i < end; ++i)
            copy_[i - first] = v.get(i);
        return copy_ - first;
    }

  private:
    T copy_[piece<T>];
};

// The same for elements that are added to, starting from zero, and then brought home.
template <class T>
class piece_to_add {
  public:
    T *at(const strided<T> &v, index_t first, index_t end) {
        if (T *const whole = v.contiguous())
            return whole;
        for (index_t i = first; i < end; ++i)
            sum_[i - first] = T{};
        return sum_ - first;
    }
    void bring_home(const strided<T> &v, index_t first, index_t end) {
        if (!v.contiguous())
            for (index_t i = first; i < end; ++i)
                v[i] += sum_[i - first];
    }

  private:
    T sum_[piece<T>];
};

// y := beta y, overwriting for beta = 0.
template <class T>
void scale(T beta, const strided<T> &y, index_t n) {
    if (is_zero(beta))
        for (index_t i = 0; i < n; ++i)
            y[i] = T{};
    else if (!(beta == one<T>))
        for (index_t i = 0; i < n; ++i)
            y[i] = beta * y[i];
}

} // namespace vox
