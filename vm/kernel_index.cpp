// kernel_index.cpp - see kernel_index.hpp.
#include "vm/kernel_index.hpp"

#include "serv/cpu.hpp"
#include "serv/environment.hpp"
#include "serv/kernel_sets.hpp"

constinit std::atomic<int> vox::vm::known_index{-1};

int vox::vm::find_index() {
    int index = this_kernel_index();
    const env_value<30> value("VOX_TQM_CODE_PATH");
    long long wanted;
    if (value.present() && parse_integer(value.text, 10, &wanted) && wanted >= 0 &&
        wanted < index_count && kernel_index_runs(this_cpu(), int(wanted)))
        index = int(wanted);
    known_index.store(index, std::memory_order_relaxed);
    return index;
}
