// frame.hpp - from an exported vector function to its kernel.
//
// A function costs its kernels, its fix-up (vm/fixup.hpp) and one row in vm/entry:
//
//   VOX_VM_1I_1O(Exp, exp, EXP, three, (0.9f, 0.7f, 0.5f))
//
// defines vsExp and vdExp, their forms with a mode, the Fortran names of all, and in each precision the two
// tables of kernels and costs. `three` says that every accuracy has a kernel, `one` that a single one, which
// rounds correctly, serves all. The costs are nanoseconds an element in double precision on vectors of 256
// bits, for HA, LA and EP; other vectors and single precision follow from the number of lanes.
//
// The kernel table is empty at load and filled by the calls, entry by entry: addresses in it would be
// relocated at every load.
#pragma once

#include <atomic>

#include "serv/kernel_sets.hpp"
#include "vm/errors.hpp"
#include "vm/kernel_index.hpp"
#include "vm/thread_block.hpp"
#include "vm/threader.hpp"

namespace vox::vm {

enum class accuracies { one, three };

struct cost_row {
    float ha, la, ep;
};

constexpr cost_row ns(float ha, float la, float ep) { return {ha, la, ep}; }

struct cost_table {
    float ns[table_size];
};

// Vector bytes of the kernels of each index.
inline constexpr int bytes_of_index[index_count] = {16, 16, 16, 16, 16, 16, 32, 32, 64, 64};

// Both baseline sets have a kernel of the highest accuracy alone.
constexpr bool all_accuracies(int index) { return index >= 2; }

constexpr cost_table costs_of(cost_row row, int element_bytes) {
    cost_table table{};
    for (int index = 0; index < index_count; ++index) {
        const float scale = 32.0f / float(bytes_of_index[index]) * float(element_bytes) / 8;
        const float by_accuracy[] = {row.la, row.ha, row.ep}; // in the order of the modes' values
        for (int a = 0; a < accuracy_count; ++a)
            table.ns[index + index_count * a] =
                scale * (all_accuracies(index) ? by_accuracy[a] : row.ha);
    }
    return table;
}

template <class Kernel>
using kernel_table = std::atomic<Kernel *>[table_size];

template <class Kernel>
struct table_entry {
    Kernel *kernel;
    float cost;
};

// What this process and the calling thread's mode run. choose: the copy of an accuracy in a kernel set.
template <class Kernel>
inline table_entry<Kernel> current(kernel_table<Kernel> &kernels, const cost_table &costs,
                                   Kernel *(*choose)(kernel_set, uint32_t accuracy)) {
    const int index = kernel_index();
    const uint32_t accuracy = accuracy_of(current_mode());
    const int place = table_index(index, accuracy);
    Kernel *kernel = kernels[place].load(std::memory_order_relaxed);
    if (VOX_UNLIKELY(!kernel)) {
        kernel = choose(kernel_set_of(index), all_accuracies(index) ? accuracy : uint32_t(TQM_HA));
        kernels[place].store(kernel, std::memory_order_relaxed);
    }
    return {kernel, costs.ns[place]};
}

// Reports an argument to xerbla by its position, and by a status.
void report_argument(const char *name, vox_int position, int status, vox_int count);

// Whether there is nothing to do: no elements, or arguments that are wrong and have been reported.
template <class... Vectors>
inline bool nothing_to_do(const char *name, vox_int n, const Vectors *...vectors) {
    if (VOX_UNLIKELY(n <= 0)) {
        if (n < 0)
            report_argument(name, 1, TQM_STATUS_BADSIZE, n);
        return true;
    }
    vox_int position = 1, bad = 0;
    ((++position, bad = bad == 0 && !vectors ? position : bad), ...);
    if (VOX_UNLIKELY(bad)) {
        report_argument(name, bad, TQM_STATUS_BADMEM, n);
        return true;
    }
    return false;
}

// The thread's mode for the length of a call: fields that are empty in `mode` stay the thread's own.
class mode_for_call {
  public:
    explicit mode_for_call(int64_t mode) : previous_(tqmSetMode(uint32_t(mode))) {}
    ~mode_for_call() { this_block.mode = previous_; }

  private:
    uint32_t previous_;
};

} // namespace vox::vm

// The kernels of p##Name in every set, and the choice among them.
#define VOX_VM_DECLARE_one(set, copy, full, kernel_type)                                           \
    extern "C" kernel_type vox_vm_##copy##_##full##_ha;
#define VOX_VM_DECLARE_three(set, copy, full, kernel_type)                                         \
    extern "C" kernel_type vox_vm_##copy##_##full##_ha, vox_vm_##copy##_##full##_la,               \
        vox_vm_##copy##_##full##_ep;
#define VOX_VM_CASE_one(set, copy, full)                                                           \
    case vox::kernel_set::set:                                                                     \
        return vox_vm_##copy##_##full##_ha;
#define VOX_VM_CASE_three(set, copy, full)                                                         \
    case vox::kernel_set::set:                                                                     \
        return accuracy == TQM_LA   ? vox_vm_##copy##_##full##_la                                  \
               : accuracy == TQM_EP ? vox_vm_##copy##_##full##_ep                                  \
                                    : vox_vm_##copy##_##full##_ha;
#define VOX_VM_TABLES(full, T, kernels, costs, kernel_type)                                        \
    VOX_KERNEL_SETS(VOX_VM_DECLARE_##kernels, full, kernel_type)                                   \
    extern "C" {                                                                                   \
    constinit vox::vm::kernel_table<kernel_type> vox_tqm_kernel_##full##_ttab = {};                \
    extern const vox::vm::cost_table vox_tqm_kernel_##full##_ctab;                                 \
    constinit const vox::vm::cost_table vox_tqm_kernel_##full##_ctab =                             \
        vox::vm::costs_of(vox::vm::ns costs, sizeof(T));                                           \
    }                                                                                              \
    namespace {                                                                                    \
    struct full##_choice {                                                                         \
        static kernel_type *choose(vox::kernel_set set, [[maybe_unused]] uint32_t accuracy) {      \
            switch (set) { VOX_KERNEL_SETS(VOX_VM_CASE_##kernels, full) }                          \
            __builtin_unreachable();                                                               \
        }                                                                                          \
        static auto now() {                                                                        \
            return vox::vm::current(vox_tqm_kernel_##full##_ttab, vox_tqm_kernel_##full##_ctab,    \
                                    choose);                                                       \
        }                                                                                          \
    };                                                                                             \
    }

#define VOX_VM_UNPACK(...) __VA_ARGS__

// One function in one precision. parameters: those after n; vectors: the same in their order, as pointers,
// none of which may be null; passed: what the threader gets between n and the cost; arguments: their
// names; fortran, by_address: the parameters of the Fortran form, and what it passes on.
#define VOX_VM_FUNCTION(p, P, T, Name, lower, upper, kernels, costs, shape, parameters, vectors,   \
                        passed, arguments, fortran, by_address)                                    \
    VOX_VM_TABLES(p##Name, T, kernels, costs, vox::vm::kernel_##shape<T>)                          \
    namespace {                                                                                    \
    inline void run_##p##Name(vox_int n, VOX_VM_UNPACK parameters) {                               \
        const auto [kernel, cost] = p##Name##_choice::now();                                       \
        vox::vm::vox_tqm_serv_threader_##p##_##shape(kernel, n, VOX_VM_UNPACK passed, cost);       \
    }                                                                                              \
    }                                                                                              \
    extern "C" void v##p##Name(vox_int n, VOX_VM_UNPACK parameters) {                              \
        if (!vox::vm::nothing_to_do("v" #p #Name, n, VOX_VM_UNPACK vectors))                       \
            run_##p##Name(n, VOX_VM_UNPACK arguments);                                             \
    }                                                                                              \
    extern "C" void vm##p##Name(vox_int n, VOX_VM_UNPACK parameters, int64_t mode) {               \
        if (vox::vm::nothing_to_do("vm" #p #Name, n, VOX_VM_UNPACK vectors))                       \
            return;                                                                                \
        const vox::vm::mode_for_call installed(mode);                                              \
        run_##p##Name(n, VOX_VM_UNPACK arguments);                                                 \
    }                                                                                              \
    VOX_FORTRAN_FORMS_OF(v##p##Name, void, v##p##lower##_, V##P##upper##_,                         \
                         (const vox_int *n, VOX_VM_UNPACK fortran),                                \
                         (*n, VOX_VM_UNPACK by_address));                                          \
    VOX_FORTRAN_FORMS_OF(vm##p##Name, void, vm##p##lower##_, VM##P##upper##_,                      \
                         (const vox_int *n, VOX_VM_UNPACK fortran, const int64_t *mode),           \
                         (*n, VOX_VM_UNPACK by_address, *mode));

// Functions of one vector, of two, and of one with a scalar that is fixed for the call.
#define VOX_VM_1I_1O_OF(p, P, T, ...)                                                              \
    VOX_VM_FUNCTION(p, P, T, __VA_ARGS__, 1i_1o, (const T *a, T *r), (a, r), (a, r, T()), (a, r),  \
                    (const T *a, T *r), (a, r))
#define VOX_VM_2I_1O_OF(p, P, T, ...)                                                              \
    VOX_VM_FUNCTION(p, P, T, __VA_ARGS__, 2i_1o, (const T *a, const T *b, T *r), (a, b, r),        \
                    (a, b, r, T()), (a, b, r), (const T *a, const T *b, T *r), (a, b, r))
#define VOX_VM_1I_1O_FIXED_OF(p, P, T, ...)                                                        \
    VOX_VM_FUNCTION(p, P, T, __VA_ARGS__, 1i_1o, (const T *a, T b, T *r), (a, &b, r), (a, r, b),   \
                    (a, b, r), (const T *a, const T *b, T *r), (a, *b, r))

#define VOX_VM_1I_1O(...) VOX_VM_BOTH(VOX_VM_1I_1O_OF, __VA_ARGS__)
#define VOX_VM_2I_1O(...) VOX_VM_BOTH(VOX_VM_2I_1O_OF, __VA_ARGS__)
#define VOX_VM_1I_1O_FIXED(...) VOX_VM_BOTH(VOX_VM_1I_1O_FIXED_OF, __VA_ARGS__)
#define VOX_VM_BOTH(form, ...) form(s, S, float, __VA_ARGS__) form(d, D, double, __VA_ARGS__)
