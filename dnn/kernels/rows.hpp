// rows.hpp - the rows of a nest: what its first loop covers, in either layout's places.
#pragma once

#include "dnn/nest.hpp"

namespace {
namespace dnn {

using vox::index_t;
using vox::dnn::loop;
using vox::dnn::nest;

inline index_t elements(const nest &n) {
    index_t product = 1;
    for (int l = 0; l < n.loops; ++l)
        product *= n.at[l].count;
    return product;
}

// body(from, to, row) for each piece of a row, of the nest's elements begin .. end-1; the row's count is the piece's.
template <class Body>
void rows(const nest &n, index_t begin, index_t end, const Body &body) {
    const loop whole = n.loops > 0 ? n.at[0] : loop{1, 1, 1};
    index_t x[vox::dnn::most_loops], from = n.from, to = n.to, left = begin;
    for (int l = 0; l < n.loops; ++l) {
        x[l] = left % n.at[l].count;
        left /= n.at[l].count;
        from += x[l] * n.at[l].from;
        to += x[l] * n.at[l].to;
    }
    index_t skipped = n.loops > 0 ? x[0] : 0;
    while (begin < end) {
        const index_t rest = whole.count - skipped;
        body(from, to, loop{rest < end - begin ? rest : end - begin, whole.from, whole.to});
        begin += rest;
        from -= skipped * whole.from;
        to -= skipped * whole.to;
        skipped = 0;
        for (int l = 1; l < n.loops; ++l) {
            from += n.at[l].from;
            to += n.at[l].to;
            if (++x[l] < n.at[l].count)
                break;
            from -= x[l] * n.at[l].from;
            to -= x[l] * n.at[l].to;
            x[l] = 0;
        }
    }
}

} // namespace dnn
} // namespace
