// one_thread.hpp - a scope in which the BLAS that the calling thread calls runs on that thread alone.
//
// For small problems: the pieces of a factorisation that are worth threads by themselves may not be
// worth them one after another, as what threads have shared must come back to one of them for the
// next panel. And for what is shared out already.
#pragma once

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox::lapack {

class one_thread {
  public:
    explicit one_thread(bool wanted = true)
        : before_(wanted ? vox_serv_set_num_threads_local(1) : unchanged) {}
    ~one_thread() {
        if (before_ != unchanged)
            vox_serv_set_num_threads_local(before_);
    }
    one_thread(const one_thread &) = delete;
    one_thread &operator=(const one_thread &) = delete;

  private:
    static constexpr int unchanged = -1;
    int before_;
};

// So many multiplications and additions in all are too few for threads; of very few the products
// themselves know that.
inline bool worth_one_thread(double operations) { return operations > 2e5 && operations < 2e8; }

} // namespace vox::lapack
