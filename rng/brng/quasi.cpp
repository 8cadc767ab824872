// quasi.cpp - seeding, leapfrog and skip-ahead of SOBOL and NIEDERR, see quasi.hpp.
#include "rng/brng/quasi.hpp"

#include <string.h>

#include "rng/brng/modular.hpp"
#include "rng/brng/polynomials.hpp"
#include "rng/registry.hpp"

namespace {

using namespace vox::rng;

#define VOX_STREAM_BYTES(row, NAME, name, bytes, ...)                                              \
    [[maybe_unused]] constexpr uint32_t name##_most = quasi_state::most_dimensions(bytes);
VOX_BRNGS(VOX_STREAM_BYTES)
#undef VOX_STREAM_BYTES
static_assert(sobol_most == 2896 && niederr_most == 21040);

// What the families differ in. Dimensions are counted from 1.
struct family {
    int32_t id;
    uint32_t table_dimensions, most_dimensions;
    uint32_t first_polynomial; // the first dimension that has one

    constexpr bool is_sobol() const { return id == RSK_BRNG_SOBOL; }

    void from_table(uint32_t dimension, directions &v) const {
        if (!is_sobol())
            niederreiter_directions(uNiederrIrredPoly[dimension - 1], v);
        else if (dimension > 1)
            sobol_directions(uSobolIrredPoly[dimension - 2], uSobolMInit + 8 * (dimension - 2), v);
        else // van der Corput's sequence
            for (int i = 0; i < direction_bits; ++i)
                v[i] = uint32_t(1) << (direction_bits - 1 - i);
    }
};
constexpr family sobol = {RSK_BRNG_SOBOL, 40, sobol_most, 2};
constexpr family niederr = {RSK_BRNG_NIEDERR, 318, niederr_most, 1};

constexpr uint32_t chunk_id = 0; // a stream has one

// A dimension's part of the rows, see quasi.hpp: all vectors of row 0, and the difference that is the same for all
// vectors of a row.
void place(const quasi_shape &shape, uint32_t dimension, const directions &v, uint32_t *rows) {
    const int k = shape.log_vectors;
    const uint32_t vectors = uint32_t(1) << k, last = k ? v[k - 1] : 0;
    for (uint32_t j = 0; j < vectors; ++j) {
        uint32_t *column = rows + j * shape.dimension + dimension;
        *column = 0;
        for (int i = 0; i < k; ++i)
            *column ^= (j ^ j >> 1) >> i & 1 ? v[i] : 0;
        for (int i = 0; i < shape.differences(); ++i)
            column[size_t(i + 1) * shape.stride()] = v[k + i] ^ last;
    }
}

// place backwards.
void directions_of(const quasi_shape &shape, uint32_t dimension, const uint32_t *rows,
                   directions &v) {
    const int k = shape.log_vectors;
    for (int i = 0; i < direction_bits; ++i) {
        const uint32_t *row = i < k ? rows + (shape.dimension << i) // of vector 2^i: v_i ^ v_(i-1)
                                    : rows + size_t(i - k + 1) * shape.stride();
        v[i] = row[dimension];
        if (k && i)
            v[i] ^= v[i < k ? i - 1 : k - 1];
    }
}

// Makes the row of the next vector. There is none at the end, which has row 0 once more.
void make_row(quasi_state &state, const uint32_t *rows) {
    const quasi_shape shape(state.dimension);
    const uint32_t number = (state.vectors + 1) >> shape.log_vectors, gray = number ^ number >> 1;
    uint32_t *row = state.row();
    memcpy(row, rows, shape.stride() * 4);
    for (int i = 0; i < shape.differences(); ++i) {
        const uint32_t *difference = rows + size_t(i + 1) * shape.stride();
        for (uint32_t j = 0; gray >> i & 1 && j < shape.stride(); ++j)
            row[j] ^= difference[j];
    }
}

// A description of dimensions in seed words: the form of records, which begin with dimension `first`, counted
// from 1.
struct description {
    uint32_t form, first;
    const uint32_t *record;
    uint32_t left; // words
    static constexpr uint32_t standard = 0;

    // The next record; false if it is bad.
    bool read(const family &f, directions &v) {
        if (form == RSK_QUASI_DIRECTIONS) {
            if (left < direction_bits)
                return false;
            memcpy(v, take(direction_bits), sizeof v);
            return are_independent(v);
        }
        if (!left || *record < 2)
            return false;
        const uint32_t polynomial = *take(1);
        if (!f.is_sobol()) {
            niederreiter_directions(polynomial, v);
            return gf2::is_irreducible(polynomial);
        }
        const auto degree = uint32_t(gf2::degree(polynomial));
        if (left < degree || !are_initial_integers(record, int(degree)))
            return false;
        sobol_directions(polynomial, take(degree), v);
        return gf2::is_primitive(polynomial);
    }

  private:
    const uint32_t *take(uint32_t words) {
        const uint32_t *taken = record;
        record += words;
        left -= words;
        return taken;
    }
};

int fill(const family &f, const quasi_shape &shape, description d, uint32_t *rows) {
    directions v;
    for (uint32_t i = 1; i <= shape.dimension; ++i) {
        if (d.form == description::standard || i < d.first)
            f.from_table(i, v);
        else if (!d.read(f, v))
            return RSK_ERROR_BAD_ARGS;
        place(shape, i - 1, v, rows);
    }
    return d.left ? int(RSK_ERROR_BAD_ARGS) : ok;
}

int attach_rows(const family &f, stream *s, const quasi_shape &shape, const description &d) {
    const bool standard = d.form == description::standard;
    chunk_key key{0, uint64_t(f.id) | uint64_t(shape.dimension) << 32};
    if (standard) {
        const int status = share_chunk(*s, chunk_id, key, shape.bytes());
        if (status != key_not_found)
            return status;
    } else {
        key = fresh_key(uint64_t(f.id));
    }
    auto *rows = static_cast<uint32_t *>(new_chunk_data(shape.bytes()));
    if (!rows)
        return RSK_ERROR_NO_MEMORY;
    memset(rows, 0, shape.bytes());
    if (const int status = fill(f, shape, d, rows)) {
        release_chunk_data(rows);
        return status;
    }
    return add_chunk(*s, chunk_id, key, rows, shape.bytes());
}

int seed_with(const family &f, stream *s, int n, const uint32_t *params) {
    quasi_state &state = s->state<quasi_state>();
    state = {};
    uint32_t dimension = n > 0 ? params[0] : 1;
    description d{n > 1 ? params[1] : description::standard, 0, nullptr, 0};
    if (d.form == description::standard) {
        if (dimension < 1 || dimension > f.table_dimensions)
            dimension = 1;
    } else {
        if (n < 3 || d.form > RSK_QUASI_DIRECTIONS || dimension > f.most_dimensions)
            return RSK_ERROR_BAD_ARGS;
        d = {d.form, params[2], params + 3, uint32_t(n) - 3};
        const uint32_t least = d.form == RSK_QUASI_POLYNOMIALS ? f.first_polynomial : 1;
        if (d.first < least || d.first > dimension || d.first > f.table_dimensions + 1)
            return RSK_ERROR_BAD_ARGS;
    }
    if (const int status = attach_rows(f, s, quasi_shape(dimension), d))
        return status;
    state.dimension = dimension;
    make_row(state, quasi_rows(state));
    return ok;
}

// Coordinate k is a sequence of dimension 1 with rows of its own. It goes on with the first vector of which it has
// not been delivered.
int select_coordinate(const family &f, stream *s, uint32_t k, const uint32_t *rows) {
    quasi_state &state = s->state<quasi_state>();
    if (state.dimension == 1)
        return ok;
    const quasi_shape shape(1);
    auto *data = static_cast<uint32_t *>(new_chunk_data(shape.bytes()));
    if (!data)
        return RSK_ERROR_NO_MEMORY;
    directions v;
    directions_of(quasi_shape(state.dimension), k, rows, v);
    place(shape, 0, v, data);
    chunk *const before = s->chunks;
    s->chunks = nullptr;
    const int status = add_chunk(*s, chunk_id, fresh_key(uint64_t(f.id)), data, shape.bytes());
    if (status != ok) {
        s->chunks = before;
        return status;
    }
    chunk *const own = s->chunks;
    s->chunks = before;
    delete_chunks(*s);
    s->chunks = own;
    state.dimension = 1;
    state.vectors += state.position > k;
    state.position = 0;
    make_row(state, data);
    return ok;
}

int skip_numbers(quasi_state &state, uint64_t count, const uint32_t *rows) {
    if (count / state.dimension >= quasi_state::all_vectors - state.vectors)
        return RSK_ERROR_NO_SKIPAHEAD;
    const uint64_t position = state.position + count % state.dimension;
    state.vectors += uint32_t(count / state.dimension + position / state.dimension);
    state.position = uint32_t(position % state.dimension);
    make_row(state, rows);
    return ok;
}

// A row that came from outside is not trusted but made again.
int check(const family &f, quasi_state &state) {
    const uint32_t *rows = quasi_rows(state);
    if (!rows || state.dimension > f.most_dimensions || state.position >= state.dimension ||
        (state.vectors == quasi_state::all_vectors && state.position))
        return bad_state;
    make_row(state, rows);
    return ok;
}

int initialise(const family &f, int method, stream *s, int n, const uint32_t *params) {
    quasi_state &state = s->state<quasi_state>();
    if (method == seed)
        return seed_with(f, s, n, params);
    if (method == validate)
        return check(f, state);
    const uint32_t *rows = quasi_rows(state);
    switch (method) {
    case leapfrog:
        if (!rows || n != 0x7FFFFFFF || params[0] >= state.dimension)
            return RSK_ERROR_NO_LEAPFROG;
        return select_coordinate(f, s, params[0], rows);
    case skip:
        if (!rows || n < 1)
            return RSK_ERROR_NO_SKIPAHEAD;
        return skip_numbers(state, n == 1 ? params[0] : count_of(params), rows);
    default:
        return unknown_method;
    }
}

} // namespace

const uint32_t *vox::rng::quasi_rows(quasi_state &state) {
    const stream *s = reinterpret_cast<stream *>(&state) - 1;
    const chunk *rows = find_chunk(*s, chunk_id);
    if (!rows || !state.dimension || state.dimension > niederr_most ||
        rows->bytes != quasi_shape(state.dimension).bytes())
        return nullptr;
    return static_cast<const uint32_t *>(rows->data);
}

extern "C" int vox_rng_sobol_init(int method, stream *s, int n, const uint32_t *params) {
    return initialise(sobol, method, s, n, params);
}
extern "C" int vox_rng_niederr_init(int method, stream *s, int n, const uint32_t *params) {
    return initialise(niederr, method, s, n, params);
}
