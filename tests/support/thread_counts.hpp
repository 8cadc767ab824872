// thread_counts.hpp - as many threads as a test asks for.
#pragma once

#include "vox/vox.h"

namespace test {

// As many threads as asked for in this scope, whatever the number of cores.
struct thread_counts {
    thread_counts() { vox_set_dynamic(0); }
    ~thread_counts() {
        vox_set_num_threads_local(0);
        vox_set_dynamic(1);
    }
    void set(int threads) const { vox_set_num_threads_local(threads); }
};

} // namespace test
