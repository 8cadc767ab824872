// far_vector.hpp - address space for elements that lie further apart than 32 bits can count; only the pages
// that are touched exist.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <sys/mman.h>

namespace test {

template <class T>
class far_vector {
  public:
    explicit far_vector(size_t elements) : size_(elements * sizeof(T)) {
        void *const space = mmap(nullptr, size_, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (space == MAP_FAILED)
            std::abort();
        data_ = static_cast<T *>(space);
    }
    ~far_vector() { munmap(data_, size_); }
    far_vector(const far_vector &) = delete;
    far_vector &operator=(const far_vector &) = delete;

    T *data() const { return data_; }
    T &operator[](size_t i) const { return data_[i]; }

  private:
    size_t size_;
    T *data_;
};

} // namespace test
