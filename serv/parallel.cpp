// parallel.cpp - see parallel.hpp. The only file that knows the OpenMP runtime's interface.
//
// The regions are what a compiler makes of "#pragma omp parallel num_threads(n)", against the
// interface that LLVM documents ("LLVM OpenMP Runtime Library Interface"), so any compiler builds
// the library and no flag is needed.
//
// A thread meets the runtime once, in get_acquainted. The first of all to do so makes the runtime
// take that thread's affinity mask for the machine, and every later one is given this mask. A
// program may have bound its threads to processors on purpose, so a bound thread meets the runtime
// under the mask of the process, and gets its own back afterwards.
#include "serv/parallel.hpp"

#include <pthread.h>

#include "serv/affinity.hpp"
#include "serv/host_openmp.hpp"
#include "serv/inspector.hpp"
#include "serv/lock.hpp"
#include "serv/thread_state.hpp"
#include "serv/thread_supply.hpp"

extern "C" {
struct ident_t {
    int32_t reserved_1, flags, reserved_2, reserved_3;
    const char *source; // ";file;function;line;column;;"
};
using kmpc_micro = void(int32_t *global_thread, int32_t *bound_thread, ...);
int32_t __kmpc_global_thread_num(ident_t *);
int32_t __kmpc_ok_to_fork(ident_t *);
void __kmpc_push_num_threads(ident_t *, int32_t global_thread, int32_t threads);
void __kmpc_fork_call(ident_t *, int32_t arguments, kmpc_micro *, ...);
void __kmpc_serialized_parallel(ident_t *, int32_t global_thread);
void __kmpc_end_serialized_parallel(ident_t *, int32_t global_thread);
void __kmpc_barrier(ident_t *, int32_t global_thread);
int omp_in_parallel(void);
int omp_get_max_threads(void);
int omp_get_num_threads(void);
int omp_get_thread_num(void);
int omp_get_thread_limit(void);
int omp_get_active_level(void);
int omp_get_max_active_levels(void);
size_t kmp_get_stacksize_s(void) __attribute__((weak)); // an extension
}

namespace {

using namespace vox;

constexpr int32_t from_compiler = 2; // ident_t::flags
constinit ident_t location = {0, from_compiler, 0, 0, ";vox;parallel;0;0;;"};

constexpr size_t default_stack_bytes = size_t(4) << 20;

// What a region's threads share. The runtime's own synchronisation is invisible to thread checkers;
// `order` repeats it where they can see it.
struct region {
    region_body *body;
    const void *context;
    std::atomic<int> order{0};

    void leave() {
        inspector_releasing(&order);
        order.fetch_add(1, std::memory_order_release);
    }
    void enter() {
        order.load(std::memory_order_acquire);
        inspector_acquired(&order);
    }
};

void micro(int32_t *, int32_t *, region *r) {
    r->enter();
    r->body(r->context, omp_get_thread_num(), omp_get_num_threads());
    r->leave();
}

// The runtime starts anew in the child of a fork, and its handler widens the affinity mask of the
// one thread that is left. Child handlers run in the order of their installation: one before the
// runtime's notes the mask, one after it puts it back.
constinit processor_mask inherited;

void enter_child() {
    if (!read_affinity(0, inherited))
        inherited = {};
}

void settle_in_child() {
    processor_mask now;
    if (read_affinity(0, now) && inherited.count() > 0 && !(now == inherited))
        set_affinity(inherited);
    thread_state state = this_thread();
    state.workers = 0;
    remember(state);
    forget_workers();
}

void install_once(std::atomic<bool> &installed, void (*child_handler)()) {
    if (!installed.exchange(true))
        pthread_atfork(nullptr, nullptr, child_handler);
}

void fork_team(int team, region &r) {
    r.leave();
    __kmpc_push_num_threads(&location, __kmpc_global_thread_num(&location), team);
    __kmpc_fork_call(&location, 1, reinterpret_cast<kmpc_micro *>(micro), &r);
    r.enter();
}

void form_team(int team) {
    region r{[](const void *, int, int) {}, nullptr};
    fork_team(team, r);
}

int team_size(int threads) {
    // Inside as many regions as the runtime lets nest, the team is the caller alone.
    if (omp_get_active_level() >= omp_get_max_active_levels())
        return 1;
    const int limit = omp_get_thread_limit();
    return obtainable_team(threads < limit ? threads : limit, form_team);
}

} // namespace

void vox::get_acquainted(thread_state state) {
    static constinit std::atomic<bool> first, second;
    processor_mask own, process, now;
    const bool known = read_affinity(0, own);
    if (known && read_process_affinity(process) && !(process == own))
        set_affinity(process);
    install_once(first, enter_child);
    omp_get_max_threads();
    install_once(second, settle_in_child);
    if (known && read_affinity(0, now) && !(now == own))
        set_affinity(own);
    find_host_runtimes();
    state.knows_runtime = true;
    remember(state);
}

void vox::run_region(int threads, region_body *body, const void *context) {
    meet_runtime(this_thread());
    const int team = team_size(threads);
    if (team <= 1)
        return body(context, 0, 1);
    if (!__kmpc_ok_to_fork(&location)) {
        const int32_t self = __kmpc_global_thread_num(&location);
        __kmpc_serialized_parallel(&location, self);
        body(context, 0, 1);
        __kmpc_end_serialized_parallel(&location, self);
        return;
    }
    region r{body, context};
    fork_team(team, r);
}

void vox::wait_for_team() {
    static constinit std::atomic<int> order; // for thread checkers, as a region's
    inspector_releasing(&order);
    order.fetch_add(1, std::memory_order_release);
    __kmpc_barrier(&location, __kmpc_global_thread_num(&location));
    order.load(std::memory_order_acquire);
    inspector_acquired(&order);
}

bool vox::in_parallel() {
    meet_runtime(this_thread());
    return in_parallel_unchecked();
}

int vox::thread_number() {
    meet_runtime(this_thread());
    return omp_get_thread_num();
}

bool vox::in_parallel_unchecked() { return omp_in_parallel() || host_in_parallel(); }

int vox::runtime_max_threads_unchecked() { return omp_get_max_threads(); }

size_t vox::runtime_stack_bytes() {
    return kmp_get_stacksize_s ? kmp_get_stacksize_s() : default_stack_bytes;
}

extern "C" int vox_serv_omp_in_parallel() { return vox::in_parallel(); }
