// guarded.hpp - operands that end (or begin) at a protected page: touching a byte beyond them is a
// fault.
//
// The memory of an operand is mapped twice, to be written and to be read alone, and serves later
// operands again: mapping and protecting pages anew takes longer than the calls that are tested.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace test {

enum class edge { back, front }; // which end of the data touches the protected page

// The two views of some memory, whole pages between protected ones.
class twice_mapped {
  public:
    explicit twice_mapped(size_t size) : size_(size) {
        const int file = memfd_create("operand", MFD_CLOEXEC);
        void *const all = mmap(nullptr, whole(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (file < 0 || ftruncate(file, off_t(size)) || all == MAP_FAILED)
            std::abort();
        base_ = static_cast<char *>(all);
        for (char *at : {writable(), readable()})
            if (mmap(at, size, PROT_READ | (at == writable() ? PROT_WRITE : 0),
                     MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED)
                std::abort();
        close(file);
    }
    twice_mapped(twice_mapped &&other) : base_(other.base_), size_(other.size_) {
        other.base_ = nullptr;
    }
    ~twice_mapped() {
        if (base_)
            munmap(base_, whole());
    }

    static size_t page() {
        static const size_t size = size_t(sysconf(_SC_PAGESIZE));
        return size;
    }
    size_t size() const { return size_; }
    char *writable() const { return base_ + page(); }
    char *readable() const { return writable() + size_ + page(); }

  private:
    size_t whole() const { return 2 * size_ + 3 * page(); }

    char *base_;
    size_t size_;
};

template <class T>
class guarded {
  public:
    guarded(const std::vector<T> &values, edge where)
        : bytes_(values.size() * sizeof(T)), memory_(take(bytes_)) {
        offset_ = where == edge::back || bytes_ == 0 ? memory_.size() - bytes_ : 0;
        view_ = memory_.writable();
        if (bytes_)
            std::memcpy(data(), values.data(), bytes_);
    }
    ~guarded() { unused()[memory_.size()].push_back(std::move(memory_)); }
    guarded(const guarded &) = delete;
    guarded &operator=(const guarded &) = delete;

    T *data() const { return reinterpret_cast<T *>(view_ + offset_); }
    // From here on data() is where writing is a fault as well.
    void freeze() { view_ = memory_.readable(); }

  private:
    // By size, a power of two pages. Each thread has its own.
    static std::map<size_t, std::vector<twice_mapped>> &unused() {
        thread_local std::map<size_t, std::vector<twice_mapped>> all;
        return all;
    }
    static twice_mapped take(size_t bytes) {
        size_t size = twice_mapped::page();
        while (size < bytes)
            size *= 2;
        std::vector<twice_mapped> &some = unused()[size];
        if (some.empty())
            return twice_mapped(size);
        twice_mapped memory = std::move(some.back());
        some.pop_back();
        return memory;
    }

    size_t bytes_, offset_;
    twice_mapped memory_;
    char *view_;
};

} // namespace test
