// thread_environment.cpp - see thread_environment.hpp.
#include "serv/thread_environment.hpp"

#include <limits.h>
#include <string.h>

#include "serv/environment.hpp"

namespace {

constexpr size_t max_value = 256;

constexpr const char *domain_names[] = {"VOX_DOMAIN_ALL", "VOX_DOMAIN_BLAS", "VOX_DOMAIN_FFT",
                                        "VOX_DOMAIN_TQM", "VOX_DOMAIN_PARDISO"};

constexpr char separators[] = " ,;:\"'";

// Whoever starts MPI processes publishes how many there are on the node. The two MV2_ variables are
// MVAPICH2's: its count, and its map of processors, which tells something only when it is one
// number.
constexpr const char *process_count_names[] = {"VOX_MPI_PPN", "MV2_COMM_WORLD_LOCAL_SIZE",
                                               "MV2_CPU_MAPPING", "OMPI_COMM_WORLD_LOCAL_SIZE",
                                               "MPI_LOCALNRANKS"};

int domain_of(const char *name, size_t length) {
    for (int d = 0; d < vox::domain_count; ++d)
        if (strlen(domain_names[d]) == length && strncmp(domain_names[d], name, length) == 0)
            return d;
    return -1;
}

// The value of a variable in a parser's words; a missing one says nothing.
int read(const char *name, int (*parse)(const char *)) {
    const vox::env_value<max_value> value(name);
    return value.present() ? parse(value.text) : -1;
}

} // namespace

int vox::parse_thread_count(const char *text) {
    int count = 1;
    if (!*text)
        return -1;
    if (!parse_digits(text, &count))
        return 1;
    return count > 0 ? count : -1;
}

void vox::parse_domain_counts(const char *text, int (&threads)[domain_count]) {
    for (const char *p = text; *(p += strspn(p, separators));) {
        const char *const name = p;
        const size_t name_length = strcspn(name, " ,;:\"'=");
        p += name_length;
        p += strspn(p, " =");
        char value[max_value + 1];
        const size_t length = strcspn(p, separators);
        const size_t kept = length < max_value ? length : max_value;
        memcpy(value, p, kept);
        value[kept] = '\0';
        p += length;
        int count = 1;
        if (!parse_digits(value, &count))
            count = 1;
        const int domain = domain_of(name, name_length);
        if (domain >= 0 && count > 0 && threads[domain] < 0)
            threads[domain] = count;
    }
}

int vox::parse_dynamic(const char *text) {
    text += strspn(text, " \"'");
    const size_t length = strcspn(text, " \"'");
    const bool is_false =
        length == 5 && (strncmp(text, "FALSE", 5) == 0 || strncmp(text, "false", 5) == 0);
    return !is_false;
}

int vox::parse_stripes(const char *text) {
    int count = -1;
    return parse_digits(text, &count) ? count : -1;
}

int vox::parse_process_count(const char *text) {
    long long count = -1;
    if (!parse_integer(text, 10, &count) || count < 0)
        return -1;
    return count < INT_MAX ? int(count) : INT_MAX;
}

int vox::parse_mpi_thread_level(const char *text) {
    int level = 0;
    return parse_digits(text, &level) && level < 4 ? level : 0;
}

vox::thread_environment vox::read_thread_environment() {
    thread_environment e;
    e.threads[VOX_DOMAIN_ALL] = read("VOX_NUM_THREADS", parse_thread_count);
    e.stripes = read("VOX_NUM_STRIPES", parse_stripes);
    const env_value<max_value> domains("VOX_DOMAIN_NUM_THREADS");
    parse_domain_counts(domains.text, e.threads);
    e.dynamic = read("VOX_DYNAMIC", parse_dynamic);
    e.omp_num_threads = read("OMP_NUM_THREADS", parse_thread_count);
    for (const char *name : process_count_names)
        if (e.processes_per_node < 0)
            e.processes_per_node = read(name, parse_process_count);
    e.mpi_thread_level = read("VOX_MPI_THREAD_LEVEL", parse_mpi_thread_level);
    return e;
}
