// threads.cpp - see threads.hpp.
//
// Every setting is one word that setters store and queries load without a lock; a value of the
// environment is stored only where the program has stored none.
#include "serv/threads.hpp"

#include "serv/cpu_quota.hpp"
#include "serv/lock.hpp"
#include "serv/parallel.hpp"
#include "serv/thread_state.hpp"
#include "serv/topology.hpp"

namespace {

using namespace vox;

using atomic_setting = std::atomic<setting>;
static_assert(atomic_setting::is_always_lock_free);

constinit atomic_setting threads[domain_count];
constinit atomic_setting dynamic, mpi_safe, stripes;

// Found at the first query, then constant.
constinit std::atomic<bool> ready;
constinit int omp_num_threads, processes_per_node, mpi_thread_level, cores, quota;

void set(atomic_setting &to, int value) {
    to.store({value, setter::program}, std::memory_order_relaxed);
}

void set_unless_set(atomic_setting &to, int value) {
    setting unset;
    if (value >= 0)
        to.compare_exchange_strong(unset, {value, setter::environment}, std::memory_order_relaxed);
}

__attribute__((noinline)) void first_use() {
    const topology &found = this_topology();
    once(ready, lock_id::thread_settings, [&] {
        const thread_environment e = read_thread_environment();
        for (int d = 0; d < domain_count; ++d)
            set_unless_set(threads[d], e.threads[d]);
        set_unless_set(stripes, e.stripes);
        set_unless_set(dynamic, e.dynamic);
        omp_num_threads = e.omp_num_threads;
        processes_per_node = e.processes_per_node;
        mpi_thread_level = e.mpi_thread_level;
        cores = found.cores;
        quota = read_cpu_quota("/proc/self/cgroup", "/proc/self/mountinfo");
    });
}

inline void get_ready() {
    if (VOX_UNLIKELY(!ready.load(std::memory_order_acquire)))
        first_use();
}

inline bool is_one(int domain) { return domain > VOX_DOMAIN_ALL && domain < domain_count; }

inline setting get(const atomic_setting &from) { return from.load(std::memory_order_relaxed); }

inline thread_settings load_settings(int domain) {
    return {is_one(domain) ? get(threads[domain]) : setting{},
            get(threads[VOX_DOMAIN_ALL]),
            get(dynamic),
            get(mpi_safe),
            omp_num_threads,
            processes_per_node,
            mpi_thread_level};
}

} // namespace

vox::thread_count vox::wanted_threads(const thread_settings &s) {
    if (s.own.value > 0)
        return {s.own.value, count_origin::domain, s.own.by};
    if (s.all.value > 0)
        return {s.all.value, count_origin::all_domains, s.all.by};
    return {0, count_origin::runtime, setter::none};
}

vox::thread_count vox::choose_threads(const thread_settings &s, const thread_context &c) {
    if (c.local > 0)
        return {c.local, count_origin::thread, setter::program};

    thread_count n = wanted_threads(s);
    const bool chosen = n.count > 0;
    if (!chosen)
        n.count = c.runtime_threads;
    if (s.dynamic.value == 0)
        return n;

    const auto lower = [&](int most, count_limit why) {
        if (most < n.count) {
            n.count = most;
            n.limit = why;
        }
    };
    if (c.in_parallel)
        lower(1, count_limit::parallel_region);
    lower(c.cores, count_limit::cores);
    if (c.quota > 0)
        lower(c.quota, count_limit::quota);
    if (s.mpi_safe.value >= 0) {
        if (s.mpi_safe.value != 1)
            lower(1, count_limit::mpi_not_safe);
    } else if (s.processes_per_node >= 0 && !chosen && s.omp_num_threads < 1) {
        const int processes = s.processes_per_node > 0 ? s.processes_per_node : 1;
        const int share = c.cores / processes;
        if (s.mpi_thread_level < 1)
            lower(1, count_limit::mpi_thread_level);
        else
            lower(share > 1 ? share : 1, count_limit::processes_per_node);
    }
    return n;
}

vox::thread_count vox::current_threads(int domain) {
    const thread_state state = this_thread();
    thread_context c;
    c.local = int(state.local);
    if (c.local > 0)
        return choose_threads({}, c);
    get_ready();
    meet_runtime(state);
    const thread_settings s = load_settings(domain);
    c.in_parallel = in_parallel_unchecked();
    if (wanted_threads(s).count == 0)
        c.runtime_threads = runtime_max_threads_unchecked();
    c.cores = cores;
    c.quota = quota;
    return choose_threads(s, c);
}

int vox::process_cpu_quota() {
    get_ready();
    return quota;
}

const char *vox::describe(count_origin origin, setter by) {
    const bool program = by == setter::program;
    switch (origin) {
    case count_origin::thread:
        return "vox_set_num_threads_local";
    case count_origin::domain:
        return program ? "vox_domain_set_num_threads" : "VOX_DOMAIN_NUM_THREADS";
    case count_origin::all_domains:
        return program ? "vox_set_num_threads" : "VOX_NUM_THREADS or VOX_DOMAIN_NUM_THREADS";
    case count_origin::runtime:
        break;
    }
    return "the OpenMP runtime";
}

const char *vox::describe(count_limit limit) {
    switch (limit) {
    case count_limit::none:
        break;
    case count_limit::parallel_region:
        return "the call comes from inside a parallel region";
    case count_limit::cores:
        return "physical cores";
    case count_limit::quota:
        return "processor quota of the control group";
    case count_limit::mpi_not_safe:
        return "vox_mpi_safe";
    case count_limit::mpi_thread_level:
        return "MPI processes without threads (VOX_MPI_THREAD_LEVEL)";
    case count_limit::processes_per_node:
        return "cores shared by the MPI processes of the node";
    }
    return nullptr;
}

extern "C" {

void vox_serv_set_num_threads(int n) {
    if (n > 0)
        set(threads[VOX_DOMAIN_ALL], n);
}

int vox_serv_domain_set_num_threads(int n, int domain) {
    if (n < 0 || (domain != VOX_DOMAIN_ALL && !is_one(domain)))
        return 0;
    set(threads[domain], n);
    return 1;
}

int vox_serv_set_num_threads_local(int n) {
    thread_state state = this_thread();
    const int previous = int(state.local);
    state.local = uint32_t(n > 0 ? n : 0) & 0x7fffffff;
    remember(state);
    return previous;
}

int vox_serv_get_max_threads() { return vox_serv_domain_get_max_threads(-1); }

int vox_serv_domain_get_max_threads(int domain) { return current_threads(domain).count; }

void vox_serv_set_dynamic(int flag) { set(dynamic, flag != 0); }

int vox_serv_get_dynamic() {
    get_ready();
    return dynamic.load(std::memory_order_relaxed).value != 0;
}

void vox_serv_mpi_safe(int flag) { set(mpi_safe, flag == 1); }

int vox_serv_mpi_get_ppn() {
    get_ready();
    return processes_per_node;
}

void vox_serv_set_num_stripes(int n) {
    if (n >= 0)
        set(stripes, n);
}

int vox_serv_get_num_stripes() {
    get_ready();
    const int n = stripes.load(std::memory_order_relaxed).value;
    return n > 0 ? n : 0;
}

} // extern "C"

VOX_ALIAS(vox_set_num_threads, vox_serv_set_num_threads);
VOX_ALIAS(vox_domain_set_num_threads, vox_serv_domain_set_num_threads);
VOX_ALIAS(vox_set_num_threads_local, vox_serv_set_num_threads_local);
VOX_ALIAS(vox_get_max_threads, vox_serv_get_max_threads);
VOX_ALIAS(vox_domain_get_max_threads, vox_serv_domain_get_max_threads);
VOX_ALIAS(vox_set_dynamic, vox_serv_set_dynamic);
VOX_ALIAS(vox_get_dynamic, vox_serv_get_dynamic);
VOX_ALIAS(vox_mpi_safe, vox_serv_mpi_safe);
VOX_ALIAS(vox_set_num_stripes, vox_serv_set_num_stripes);
VOX_ALIAS(vox_get_num_stripes, vox_serv_get_num_stripes);

VOX_FORTRAN_FORM(void, vox_set_num_threads, VOX_SET_NUM_THREADS, (const vox_int *n), (*n));
VOX_FORTRAN_FORM(vox_int, vox_domain_set_num_threads, VOX_DOMAIN_SET_NUM_THREADS,
                 (const vox_int *n, const vox_int *domain), (*n, *domain));
VOX_FORTRAN_FORM(vox_int, vox_set_num_threads_local, VOX_SET_NUM_THREADS_LOCAL, (const vox_int *n),
                 (*n));
VOX_FORTRAN_FORM(vox_int, vox_get_max_threads, VOX_GET_MAX_THREADS, (), ());
VOX_FORTRAN_FORM(vox_int, vox_domain_get_max_threads, VOX_DOMAIN_GET_MAX_THREADS,
                 (const vox_int *domain), (*domain));
VOX_FORTRAN_FORM(void, vox_set_dynamic, VOX_SET_DYNAMIC, (const vox_int *flag), (*flag));
VOX_FORTRAN_FORM(vox_int, vox_get_dynamic, VOX_GET_DYNAMIC, (), ());
VOX_FORTRAN_FORM(void, vox_mpi_safe, VOX_MPI_SAFE, (const vox_int *flag), (*flag));
VOX_FORTRAN_FORM(void, vox_set_num_stripes, VOX_SET_NUM_STRIPES, (const vox_int *n), (*n));
VOX_FORTRAN_FORM(vox_int, vox_get_num_stripes, VOX_GET_NUM_STRIPES, (), ());
