// integer.hpp - the driver of integer products: how many threads, and a rectangle of C for each.
#pragma once

#include "blas/drivers/gemm_threads.hpp"
#include "blas/drivers/team.hpp"
#include "blas/integer_products.hpp"
#include "serv/cpu.hpp"

namespace vox::integer {

inline index_t bytes_of(integer_type type) { return type == integer_type::s16 ? 2 : 1; }

// Rows and columns of a product.
inline integer_product part_of(integer_product job, range rows, range columns) {
    const auto from = [](integer_factor &f, index_t first, bool by_column) {
        const index_t elements = first * (by_column != f.transposed ? f.ld : 1);
        f.data = static_cast<const char *>(f.data) + elements * bytes_of(f.type);
    };
    from(job.a, rows.first, false);
    from(job.b, columns.first, true);
    job.m = rows.end - rows.first, job.n = columns.end - columns.first;
    job.c += rows.first + columns.first * job.ldc;
    if (job.offset != integer_product::fixed)
        job.co += job.offset == integer_product::column ? rows.first : columns.first;
    return job;
}

// Threads pack for themselves: those with the same rows A, those with the same columns B. So many
// groups of columns as leave the least to pack.
inline index_t groups_of(index_t threads, index_t m, index_t n) {
    index_t best = 1;
    const auto packed = [&](index_t groups) {
        return double(m) * double(groups) / double(threads) + double(n) / double(groups);
    };
    for (index_t groups = 2; groups <= threads; ++groups)
        if (threads % groups == 0 && packed(groups) < packed(best))
            best = groups;
    return best;
}

template <class Kernel>
void multiply(Kernel kernel, const integer_product &job) {
    if (job.m <= 0 || job.n <= 0)
        return;
    constexpr double least_operations = 4e5; // done sooner than a thread is woken
    const double work = 2.0 * double(job.m) * double(job.n) * double(job.k) / least_operations;
    const int wanted =
        gemm_threads(vox_serv_cpu_detect(), gemm_weights_of<float>, job.m, job.n, job.k,
                     [] { return vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS); });
    const index_t threads = work < wanted ? index_t(work) : wanted;
    if (threads <= 1)
        return kernel(&job);
    const index_t groups = groups_of(threads, job.m, job.n), members = threads / groups;
    for_parts(threads, [&](index_t part) {
        const range rows = even_part(part % members, members, {0, job.m}, 32);
        const range columns = even_part(part / members, groups, {0, job.n}, 8);
        const integer_product mine = part_of(job, rows, columns);
        kernel(&mine);
    });
}

} // namespace vox::integer
