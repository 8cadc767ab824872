// shape.cpp - see shape.hpp.
#include "dnn/shape.hpp"

namespace vox::dnn {
namespace {

constexpr index_t line_bytes = 64, lane_bytes = 16, row_elements = 16 * 1024;

// The loops that cover elements side by side in the source, as far as there are any.
loops source_chain(const nest &n) {
    loops chain;
    for (index_t run = 1, length = 1;; run *= length) {
        int l = 0;
        while (l < n.loops && n.at[l].from != run)
            ++l;
        if (l == n.loops)
            return chain;
        chain.add(l);
        length = n.at[l].count;
    }
}

loops destination_chain(const nest &n, index_t room) {
    loops chain;
    for (index_t run = 1; chain.count < n.loops && n.at[chain.count].to == run;) {
        run *= chain.count == 0 ? room : n.at[chain.count].count;
        chain.add(chain.count);
    }
    return chain;
}

bool contains(const loops &some, int l) {
    for (int i = 0; i < some.count; ++i)
        if (some.at[i] == l)
            return true;
    return false;
}

} // namespace

void loops::add(int l) { at[count++] = l; }

index_t shape::pieces(const nest &n, int l) const {
    return (n.at[l].count + extent[l] - 1) / extent[l];
}

index_t shape::size(const nest &n) const {
    index_t product = 1;
    for (int l = 0; l < n.loops; ++l)
        product *= l == 0 && extent[0] == n.at[0].count ? room : extent[l];
    return product;
}

index_t shape::product(const loops &some) const {
    index_t product = 1;
    for (int i = 0; i < some.count; ++i)
        product *= extent[some.at[i]];
    return product;
}

// Makes the run along a chain as long as asked for, as far as the block may grow.
void shape::grow(const nest &n, const loops &chain, index_t bytes, index_t elem_size) {
    index_t length = elem_size;
    for (int i = 0; i < chain.count && length < bytes; ++i) {
        const int l = chain.at[i];
        const index_t count = n.at[l].count, line = line_bytes / elem_size;
        const index_t most = block_bytes / elem_size / (size(n) / extent[l]);
        index_t wanted = (bytes + length - 1) / length;
        if (wanted > most)
            wanted = most;
        if (wanted < count && count <= 2 * wanted && count <= most)
            wanted = count;
        if (wanted < count && wanted > line)
            wanted -= wanted % line;
        if (wanted > most_lines)
            wanted = most_lines;
        if (wanted > count)
            wanted = count;
        if (extent[l] < wanted)
            extent[l] = wanted;
        if (extent[l] < count)
            return;
        length *= l == 0 ? room : count;
    }
}

shape::shape(const nest &n, index_t elem_size, index_t room_) : room(room_) {
    const loops source = source_chain(n), destination = destination_chain(n, room);
    for (int l = 0; l < n.loops; ++l)
        extent[l] = 1;
    const bool both = source.count > 0 && destination.count > 0;
    const bool same = both && source.at[0] == 0;
    if (n.loops == 0) {
        way = scattered;
    } else if (same && n.at[0].count * elem_size >= long_row_bytes) {
        way = rows;
        extent[0] = n.at[0].count < row_elements ? n.at[0].count : row_elements;
    } else {
        way = same ? units : both ? transposed : scattered;
        const auto along_source = [&](index_t bytes) { grow(n, source, bytes, elem_size); };
        const auto along_destination = [&](index_t bytes) {
            grow(n, destination, bytes, elem_size);
        };
        if (same || room > n.at[0].count)
            extent[0] = n.at[0].count;
        along_source(line_bytes);
        along_destination(line_bytes);
        along_destination(16 * line_bytes);
        along_source(4 * line_bytes);
        along_destination(32 * line_bytes);
        along_source(16 * line_bytes);
        along_destination(block_bytes);
        if (!both) // whatever is near on the side that has no chain
            for (int l = 0; l < n.loops && l < 2; ++l)
                if (size(n) * 32 * elem_size <= block_bytes && extent[l] == 1)
                    extent[l] = n.at[l].count < 32 ? n.at[l].count : 32;
    }
    run = 0;
    while (run < destination.count && (run == 0 || extent[run - 1] == n.at[run - 1].count))
        ++run;
    blocks = 1;
    for (int l = 0; l < n.loops; ++l)
        blocks *= pieces(n, l);
    if (way == transposed) {
        // Loops of both chains go to the side that would otherwise end within a vector.
        const index_t lane = lane_bytes / elem_size;
        const int first = source.at[0];
        const auto take_columns = [&] {
            for (int i = 0; i < source.count; ++i) {
                const int l = source.at[i];
                if (l == 0 || contains(row, l) || product(column) * extent[l] > most_lines)
                    return;
                column.add(l);
                if (extent[l] < n.at[l].count)
                    return;
            }
        };
        const auto take_rows = [&] {
            for (int l = 0; l < destination.count; ++l) {
                if (l == first || contains(column, l) || product(row) * extent[l] > most_lines)
                    return;
                row.add(l);
                if (extent[l] < (l == 0 ? room : n.at[l].count))
                    return;
            }
        };
        if (extent[first] % lane == 0) {
            column.add(first);
            take_rows();
        } else {
            take_columns();
            take_rows();
        }
    }
    for (int l = 0; l < n.loops; ++l)
        if (extent[l] > 1 && !contains(row, l) && !contains(column, l) &&
            !(l == 0 && (way == units || way == rows)))
            other.add(l);
}

} // namespace vox::dnn
