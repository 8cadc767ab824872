// chunks.hpp - data that a generator keeps beside a stream's state, private or shared between streams.
//
// A stream has a list of chunks, told apart by an id that is its generator's own affair. A chunk with a key
// is in a table of the process: all streams that hold the key have the same data, which nobody changes any
// more and which go with the last of them. Where the table is full a chunk becomes private.
//
// Keys {0, tag} are for data that are the same in every process, such as standard direction numbers; for
// other data fresh_key(tag) makes one that only copies of the stream will have. Tags are a generator's
// identifier, and in the upper half what the generator likes; they are not 0.
//
//   const chunk_key key{0, RSK_BRNG_SOBOL};
//   int status = share_chunk(*s, id, key, bytes);   // somebody made it already
//   if (status == key_not_found) {
//       auto *data = static_cast<uint32_t *>(new_chunk_data(bytes));
//       if (!data)
//           return RSK_ERROR_NO_MEMORY;
//       ... fill data
//       status = add_chunk(*s, id, key, data, bytes); // data are the stream's, whatever the status
//   }
//
// Two threads may do this at once: the data of the first are kept.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct chunk_key {
    uint64_t first, second;
    explicit operator bool() const { return first | second; } // not a private chunk's
    bool operator==(const chunk_key &) const = default;
};

struct chunk {
    uint32_t id, bytes;
    void *data;
    chunk *next;
    chunk_key key;
};
static_assert(sizeof(chunk) == 40);

// What the table says; never seen by callers of the library.
enum table_status : int { key_not_found = -3000, table_full = -3001 };

// The first chunk of that id; null if there is none.
chunk *find_chunk(const stream &s, uint32_t id);

// At an address divisible by 128; null if there is no memory. release_chunk_data: for data that were not
// added to a stream.
void *new_chunk_data(uint32_t bytes);
void release_chunk_data(void *data);

// Puts a chunk at the head of the list: 0, or -4 with the list unchanged. The data become the stream's and
// are released when there is no memory, or when the table has others under that key.
int add_chunk(stream &s, uint32_t id, chunk_key key, void *data, uint32_t bytes);
// The same with the data that the table has under the key, or key_not_found.
int share_chunk(stream &s, uint32_t id, chunk_key key, uint32_t bytes);
// Adds copies of all chunks, which reverses their order: 0, or -4 with the list of `to` unchanged.
int copy_chunks(stream &to, const stream &from);
void delete_chunks(stream &s);

// A key that is not in the table, by the processor's time-stamp counter.
chunk_key fresh_key(uint64_t tag);

// For tests: entries of the table, and how many streams hold a key (0: not in the table).
int shared_chunks();
uint32_t holders(chunk_key key);

} // namespace vox::rng
