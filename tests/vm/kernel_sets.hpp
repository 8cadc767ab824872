// kernel_sets.hpp - every kernel set that the processor can run, in one process; and threads with nothing set.
#pragma once

#include <thread>

#include "serv/cpu.hpp"
#include "serv/kernel_sets.hpp"
#include "vm/kernel_index.hpp"
#include "vox/tqm.h"

namespace test {

// body(index, accuracy), with the index in force.
template <class Body>
void in_every_kernel_set(const Body &body) {
    const int before = vox::vm::known_index;
    for (int index = 0; index < vox::vm::index_count; ++index)
        if (vox::kernel_index_runs(vox::this_cpu(), index)) {
            vox::vm::known_index = index;
            for (int accuracy = TQM_LA; accuracy <= TQM_EP; ++accuracy)
                body(index, accuracy);
        }
    vox::vm::known_index = before;
}

// A new thread has a mode, a status and a callback of its own.
template <class Body>
void in_new_thread(const Body &body) {
    std::thread(body).join();
}

} // namespace test
