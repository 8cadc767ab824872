// guarded.hpp - operands that end (or begin) at a protected page: touching a byte beyond them is a
// fault.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace test {

enum class edge { back, front }; // which end of the data touches the protected page

template <class T>
class guarded {
  public:
    guarded(const std::vector<T> &values, edge where) {
        const size_t page = size_t(sysconf(_SC_PAGESIZE)), bytes = values.size() * sizeof(T);
        const size_t inner = (bytes + page - 1) / page * page;
        size_ = inner + 2 * page;
        base_ = static_cast<char *>(
            mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (base_ == MAP_FAILED || (inner && mprotect(base_ + page, inner, PROT_READ | PROT_WRITE)))
            std::abort();
        char *const begin = base_ + page + (where == edge::back ? inner - bytes : 0);
        data_ = reinterpret_cast<T *>(begin);
        if (bytes)
            std::memcpy(data_, values.data(), bytes);
    }
    ~guarded() { munmap(base_, size_); }
    guarded(const guarded &) = delete;
    guarded &operator=(const guarded &) = delete;

    T *data() const { return data_; }
    // From here on writing to the data is a fault as well.
    void freeze() const {
        const size_t page = size_t(sysconf(_SC_PAGESIZE));
        if (size_ > 2 * page && mprotect(base_ + page, size_ - 2 * page, PROT_READ))
            std::abort();
    }

  private:
    char *base_;
    size_t size_;
    T *data_;
};

} // namespace test
