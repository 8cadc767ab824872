// registry.cpp - see registry.hpp.
#include "rng/registry.hpp"

#include "vox/rsk.h"

namespace {

using namespace vox::rng;

constexpr int capacity = 512;
constexpr int row_shift = 20;
constexpr int legacy_wh = 4, legacy_sobol = 277, legacy_niederr = 278;

constinit brng_properties registered[capacity - built_in_rows]{};
constinit int rows = built_in_rows;

int members(int row) {
    switch (row) {
    case WH:
        return 273;
    case MT2203:
        return 6024;
    default:
        return 1;
    }
}

brng_properties properties_of(int row) {
    switch (row) {
#define VOX_BRNG_PROPERTIES(r, NAME, name, size, words, zero, word, bits, members)                 \
    case r:                                                                                        \
        return {size,                                                                              \
                words,                                                                             \
                zero,                                                                              \
                word,                                                                              \
                bits,                                                                              \
                vox_rng_##name##_init,                                                             \
                vox_rng_##name##_s,                                                                \
                vox_rng_##name##_d,                                                                \
                vox_rng_##name##_i};
        VOX_BRNGS(VOX_BRNG_PROPERTIES)
#undef VOX_BRNG_PROPERTIES
    default:
        return registered[row - built_in_rows];
    }
}

// The row of the current table that a place of the older numbering stands for.
int current_row(brng_place place) {
    if (place.table == brng_place::current)
        return place.row;
    if (place.row == legacy_sobol)
        return SOBOL;
    if (place.row == legacy_niederr)
        return NIEDERR;
    return place.row < legacy_wh ? place.row : WH;
}

} // namespace

vox::rng::brng_place vox::rng::rskGetBrngBaseOffset(int id) {
    if (id >= 1 << row_shift)
        return {brng_place::current, (id >> row_shift) - 1, id & ((1 << row_shift) - 1)};
    const bool wh = id >= legacy_wh && id < legacy_sobol;
    return {brng_place::legacy, id, wh ? id - legacy_wh : 0};
}

vox::rng::brng_place vox::rng::current_place(int id) {
    const brng_place place = rskGetBrngBaseOffset(id);
    return {brng_place::current, current_row(place), place.member};
}

int vox::rng::rskIsBrngValid(brng_place place) {
    bool valid;
    if (place.table == brng_place::legacy) // its two empty rows are no generators
        valid = place.row >= 0 && place.row <= legacy_niederr;
    else
        valid = place.row < rows && place.member < members(place.row);
    return valid ? RSK_STATUS_OK : RSK_ERROR_INVALID_BRNG;
}

int vox::rng::rskGetBrngProperties(int id, brng_properties *properties) {
    const brng_place place = rskGetBrngBaseOffset(id);
    if (const int status = rskIsBrngValid(place))
        return status;
    *properties = properties_of(current_row(place));
    return RSK_STATUS_OK;
}

int vox::rng::rskGetNumRegBrngs() { return rows; }

int vox::rng::rskRegisterBrng(const brng_properties *p) {
    if (!p)
        return RSK_ERROR_NULL_PTR;
    if (p->stream_size < 0)
        return RSK_ERROR_STREAM_SIZE;
    if (p->word_size != 4 && p->word_size != 8 && p->word_size != 16)
        return RSK_ERROR_WORD_SIZE;
    if (p->seed_words < 1)
        return RSK_ERROR_SEED_WORDS;
    if (p->bits < 1)
        return RSK_ERROR_BITS;
    if (!p->init || !p->singles || !p->doubles || !p->integers)
        return RSK_ERROR_NULL_PTR;
    if (rows == capacity)
        return RSK_ERROR_NO_MEMORY;
    registered[rows - built_in_rows] = *p;
    return ++rows << row_shift;
}
