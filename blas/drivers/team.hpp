// team.hpp - how many threads a level 2 call takes, and the parts they take.
#pragma once

#include "serv/base.hpp"
#include "serv/parallel.hpp"
#include "vox/service.h"

namespace vox {

// Bytes of a matrix that a thread must have to read, or to read and write, before its start is paid
// for.
constexpr index_t bytes_per_thread = 512 * 1024;

inline index_t team_for(index_t bytes) {
    if (VOX_LIKELY(bytes < 2 * bytes_per_thread))
        return 1;
    const index_t threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    const index_t most = bytes / bytes_per_thread;
    return most < threads ? most : threads;
}

struct range {
    index_t first, end;
};

// Part `part` of first .. end - 1, in multiples of `block` but for the last.
inline range even_part(index_t part, index_t parts, range whole, index_t block) {
    const index_t n = whole.end - whole.first;
    index_t length = 0;
    const index_t start = vox_serv_divbythreadsnb(&part, &parts, &n, &block, &length);
    return {whole.first + start, whole.first + start + length};
}

// Columns of a stored triangle, so that all parts have about the same area.
inline range triangle_part(index_t part, index_t parts, index_t n, bool upper) {
    index_t length = 0;
    const index_t start = vox_serv_divbythreadstr(&part, &parts, &n, upper ? "L" : "U", &length);
    return {start, start + length};
}

// body(part) for every part, even when the team comes out smaller than asked for.
template <class Body>
void for_parts(index_t parts, const Body &body) {
    parallel(int(parts), [&](int thread, int team) {
        for (index_t part = thread; part < parts; part += team)
            body(part);
    });
}

} // namespace vox
