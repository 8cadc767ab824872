// one_thread.hpp - small problems stay on the calling thread.
//
// The pieces of a factorisation that are worth threads by themselves may not be worth them one after
// another: what threads have shared must come back to one of them for the next panel.
#pragma once

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox::lapack {

// In its scope the calling thread's products have no other threads, if so many multiplications and
// additions in all are few.
class one_thread_below {
  public:
    explicit one_thread_below(double operations)
        : previous_(operations > never_shared && operations < few
                        ? vox_serv_set_num_threads_local(1)
                        : unchanged) {}
    ~one_thread_below() {
        if (previous_ != unchanged)
            vox_serv_set_num_threads_local(previous_);
    }
    one_thread_below(const one_thread_below &) = delete;
    one_thread_below &operator=(const one_thread_below &) = delete;

  private:
    static constexpr int unchanged = -1;
    static constexpr double few = 2e8;
    static constexpr double never_shared = 2e5; // products alone see to that
    int previous_;
};

} // namespace vox::lapack
