// stream.hpp - the stream object: a header of 16 bytes, then the state of its generator.
//
// Generators reach their state by state<S>(), S a plain structure that begins at byte 16.
#pragma once

#include "serv/base.hpp"

namespace vox::rng {

struct chunk; // auxiliary data of a generator, see chunks.hpp

struct stream {
    int32_t id; // as it was asked for, member of the family included
    uint8_t marker;
    uint8_t zeros[3];
    chunk *chunks;

    template <class State>
    [[gnu::always_inline]] State &state() {
        return *reinterpret_cast<State *>(this + 1);
    }
};
static_assert(sizeof(stream) == 16);

inline constexpr uint8_t live = 1; // marker of a valid stream

// What a generator's initialisation routine is asked for.
enum method : int {
    seed = 0,     // n seed words
    leapfrog = 1, // n streams, of which this becomes number params[0]
    skip = 2,     // params: a count of 64 bits as two words, the lower one first
    validate = 3  // a state from outside: ok, or bad_state if the routines cannot work with it
};

// Status codes; those of the entry points have names in rsk.h. A generator that needs no validation, since it
// works with any bytes, may answer unknown_method.
enum status : int { ok = 0, unknown_method = -2, bad_state = -1207 };

} // namespace vox::rng
