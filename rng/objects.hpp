// objects.hpp - stream objects: their memory, and what is asked of a generator about one.
//
// They come from the plain allocator rather than from the pool of scratch, whose buffers belong to a thread
// and go with it: a stream may outlive the thread that made it, and be deleted by another.
#pragma once

#include "rng/registry.hpp"

namespace vox::rng {

// What a copy of the state has at least: all of the generator's words of state.
inline size_t state_words_bytes(const brng_properties &row) {
    return size_t(row.word_size) * size_t(row.seed_words);
}
// Bytes of state of an object: it has room for its words even where the row's size has not (WH).
inline size_t state_bytes(const brng_properties &row) {
    const size_t words = state_words_bytes(row), size = size_t(row.stream_size);
    return size < sizeof(stream) + words ? words : size - sizeof(stream);
}

// A live stream with a state of zeros and no chunks; null if there is no memory.
stream *new_object(int id, const brng_properties &row);
// Its chunks go as well. Null: nothing.
void delete_object(stream *s);

// ok, or why the generator cannot work with the state.
int validate_state(stream *s, const brng_properties &row);

inline bool is_abstract(int id) {
    return id == (IABSTRACT + 1) << 20 || id == (DABSTRACT + 1) << 20 ||
           id == (SABSTRACT + 1) << 20;
}

} // namespace vox::rng
