// scratch.hpp - scratch memory for the length of a scope, from the calling thread's pool.
//
//   vox::scratch<double> panel(m * k, 128);
//   if (panel.empty())
//       return vox_blas_unpacked(...); // each caller says what it does without
//
// Contents are not set. Empty: there is no memory, the count is beyond all bounds, or it was not
// positive. The memory goes back at the end of the scope, on the thread that took it. All members
// are inlined always, so that kernel objects, too, can use this and leave no copy behind.
#pragma once

#include <type_traits>

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox {

template <class T>
class scratch {
    static_assert(std::is_trivially_default_constructible_v<T> &&
                  std::is_trivially_destructible_v<T>);

  public:
    // alignment in bytes; packed operands take 128.
    [[gnu::always_inline]] explicit scratch(index_t count, size_t alignment = 64) {
        size_t bytes;
        if (count > 0 && !__builtin_mul_overflow(size_t(count), sizeof(T), &bytes))
            data_ = static_cast<T *>(vox_serv_allocate(bytes, alignment));
    }
    [[gnu::always_inline]] ~scratch() { vox_serv_deallocate(data_); }
    scratch(const scratch &) = delete;
    scratch &operator=(const scratch &) = delete;

    [[gnu::always_inline]] bool empty() const { return !data_; }
    [[gnu::always_inline]] T *data() const { return data_; }
    [[gnu::always_inline]] T &operator[](index_t i) const { return data_[i]; }

  private:
    T *data_ = nullptr;
};

} // namespace vox
