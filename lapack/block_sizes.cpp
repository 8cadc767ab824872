// block_sizes.cpp - the answers of ilaenv: block sizes by routine, and the parameters of algorithms.
//
// Those of the small-bulge QR algorithm: K. Braman, R. Byers, R. Mathias, "The Multishift QR Algorithm",
// SIAM J. Matrix Anal. Appl. 23(4), 2002.
#include "lapack/block_sizes.hpp"

#include <math.h>
#include <string.h>

using vox::index_t;
using namespace vox::lapack;

namespace {

// A routine's name in upper case, blanks after it.
struct routine_name {
    char letters[8];

    routine_name(const char *name, size_t length) {
        for (size_t i = 0; i < sizeof letters; ++i) {
            const char c = i < length ? name[i] : ' ';
            letters[i] = c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
        }
    }
    bool has(size_t place, const char *part) const {
        return memcmp(letters + place, part, strlen(part)) == 0;
    }
    // Of the precision that it begins with; 1 if that is none.
    size_t element_bytes() const {
        switch (letters[0]) {
        case 'S':
            return sizeof(float);
        case 'D':
            return sizeof(double);
        case 'C':
            return sizeof(vox_complex_float);
        case 'Z':
            return sizeof(vox_complex_double);
        default:
            return 1;
        }
    }
};

// By the five letters behind the one for the precision.
algorithm algorithm_of(const routine_name &name) {
    static constexpr struct {
        char stem[6];
        algorithm which;
    } table[] = {
        {"GETRF", algorithm::lu},
        {"GETRI", algorithm::inverse},
        {"POTRF", algorithm::cholesky},
        {"TRTRI", algorithm::triangle_inverse},
        {"LAUUM", algorithm::triangle_square},
        {"GEQRF", algorithm::qr},
        {"GELQF", algorithm::qr},
        {"GEQP3", algorithm::qr},
        {"ORGQR", algorithm::make_q},
        {"UNGQR", algorithm::make_q},
        {"ORGLQ", algorithm::make_q},
        {"UNGLQ", algorithm::make_q},
        {"ORMQR", algorithm::apply_q},
        {"UNMQR", algorithm::apply_q},
        {"ORMLQ", algorithm::apply_q},
        {"UNMLQ", algorithm::apply_q},
    };
    if (name.element_bytes() > 1)
        for (const auto &row : table)
            if (name.has(1, row.stem))
                return row.which;
    return algorithm::none;
}

// Simultaneous shifts for an active block of order n.
index_t shifts(index_t n) {
    static constexpr struct {
        index_t from, shifts;
    } table[] = {{6000, 256}, {3000, 128}, {590, 64}, {150, 0}, {60, 10}, {30, 4}};
    for (const auto &row : table)
        if (n >= row.from) {
            if (row.shifts)
                return row.shifts;
            const index_t some = n / lroundf(log2f(float(n)));
            return some < 10 ? 10 : some & ~index_t(1);
        }
    return 2;
}

// How a sweep is accumulated: 0 not at all, 1 in products of matrices, 2 with their structure too.
index_t accumulation(const routine_name &name, index_t n, index_t count) {
    constexpr index_t worth_it = 14;
    if (name.has(1, "GGHRD") || name.has(1, "GGHD3"))
        return n >= worth_it ? 2 : 1;
    if (name.has(3, "EXC"))
        return n >= worth_it ? 2 : 0;
    if (name.has(1, "HSEQR") || name.has(1, "LAQR"))
        return count >= worth_it ? 2 : 0;
    return 0;
}

} // namespace

extern "C" index_t vox_lapack_ilaenv(const index_t *ispec, const char *name, const char *,
                                     const index_t *n1, const index_t *n2, const index_t *n3,
                                     const index_t *, size_t name_length, size_t) {
    const routine_name routine(name, name_length);
    const index_t active = *n3 - *n2 + 1; // rows n2 to n3 of a Hessenberg matrix
    switch (*ispec) {
    case 1:
        return block_size(algorithm_of(routine), *n1, *n2, routine.element_bytes());
    case 2:
        return blocking_of(algorithm_of(routine)).minimum;
    case 3:
        return blocking_of(algorithm_of(routine)).crossover;
    case 4: // shifts of an eigenvalue routine that is used no more
        return 6;
    case 5: // columns for which blocks pay, the same
        return 2;
    case 6: // the SVD of an m x n matrix begins by QR where the larger is more than this
        return index_t(float(*n1 < *n2 ? *n1 : *n2) * 1.6f);
    case 7: // processors
        return 1;
    case 8: // order from which a multishift QR was used, as 4
        return 50;
    case 9: // largest problem that divide and conquer does not divide
        return 25;
    case 10: // NaN is safe
    case 11: // and so is infinity
        return 1;
    case 12: // order from which the small-bulge QR algorithm is used
        return 75;
    case 13: // window of deflation
        return active <= 500 ? shifts(active) : 3 * shifts(active) / 2;
    case 14: // deflations in percent of the window that make a sweep superfluous
        return 14;
    case 15:
        return shifts(active);
    case 16:
        return accumulation(routine, active, shifts(active));
    case 17: // cost of a rotation in units of a product's
        return 10;
    default:
        return -1;
    }
}
