// streams.cpp - making, copying, changing and deleting streams.
#include <string.h>

#include <utility>

#include "rng/chunks.hpp"
#include "rng/entry/valid.hpp"
#include "rng/objects.hpp"

namespace {

using namespace vox::rng;

// A failing initialisation leaves the stream with the caller, who deletes it.
int new_stream(rskStream *out, int id, int n, const uint32_t *params) {
    brng_properties row;
    if (is_abstract(id) || rskGetBrngProperties(id, &row) != RSK_STATUS_OK)
        return RSK_ERROR_INVALID_BRNG;
    if (!out || (n > 0 && !params))
        return RSK_ERROR_NULL_PTR;
    stream *s = new_object(id, row);
    *out = handle(s);
    return s ? row.init(seed, s, n, params) : RSK_ERROR_NO_MEMORY;
}

int copy_stream(rskStream *out, const stream &from) {
    brng_properties row;
    if (const int status = rskGetBrngProperties(from.id, &row))
        return status;
    if (!out)
        return RSK_ERROR_NULL_PTR;
    *out = nullptr;
    stream *s = new_object(from.id, row);
    if (!s)
        return RSK_ERROR_NO_MEMORY;
    memcpy(s + 1, &from + 1, state_bytes(row));
    if (const int status = copy_chunks(*s, from)) {
        delete_object(s);
        return status;
    }
    *out = handle(s);
    return RSK_STATUS_OK;
}

// How much of the state of `from` goes to `to`: all of it between streams of one generator, so that both
// continue alike; else the words of state, as far as there is room. Nothing between abstract streams, which
// have no words.
size_t bytes_to_copy(const brng_properties &to, const brng_properties &from, bool alike) {
    const size_t words = state_words_bytes(from);
    if (alike && words)
        return state_bytes(from);
    return words < state_bytes(to) ? words : state_bytes(to);
}

// Done to a draft first, since it may fail: there may be no memory, or the generator of `to` may not be able
// to work with the other's state.
int copy_state(stream &to, const stream &from) {
    brng_properties to_row, from_row;
    if (const int status = rskGetBrngProperties(to.id, &to_row))
        return status;
    if (const int status = rskGetBrngProperties(from.id, &from_row))
        return status;
    stream *draft = new_object(to.id, to_row);
    if (!draft)
        return RSK_ERROR_NO_MEMORY;
    const bool alike = current_place(to.id) == current_place(from.id);
    memcpy(draft + 1, &to + 1, state_bytes(to_row));
    memcpy(draft + 1, &from + 1, bytes_to_copy(to_row, from_row, alike));
    int status = copy_chunks(*draft, from);
    if (status == ok && !alike)
        status = validate_state(draft, to_row);
    if (status == ok) {
        memcpy(&to + 1, draft + 1, state_bytes(to_row));
        std::swap(to.chunks, draft->chunks);
    }
    delete_object(draft);
    return status;
}

int change(stream *s, int method, int n, const uint32_t *params) {
    brng_properties row;
    if (const int status = rskGetBrngProperties(s->id, &row))
        return status;
    return row.init(method, s, n, params);
}

} // namespace

extern "C" int rskNewStreamEx(rskStream *out, vox_int id, vox_int n, const uint32_t *params) {
    if (id < 0)
        return report("rskNewStreamEx", 2, RSK_ERROR_INVALID_BRNG);
    return new_stream(out, id, n, params);
}

extern "C" int rskNewStream(rskStream *out, vox_int id, uint32_t seed_word) {
    if (id < 0)
        return report("rskNewStream", 2, RSK_ERROR_INVALID_BRNG);
    return new_stream(out, id, 1, &seed_word);
}

extern "C" int rskDeleteStream(rskStream *out) {
    stream *s = out ? object(*out) : nullptr;
    if (const int status = validity(s))
        return report("rskDeleteStream", 1, status);
    delete_object(s);
    *out = nullptr;
    return RSK_STATUS_OK;
}

extern "C" int rskCopyStream(rskStream *out, rskStream source) {
    const stream *from = object(source);
    if (const int status = validity(from))
        return report("rskCopyStream", 2, status);
    return copy_stream(out, *from);
}

extern "C" int rskCopyStreamState(rskStream destination, rskStream source) {
    stream *to = object(destination), *from = object(source);
    if (const int status = validity(to))
        return report("rskCopyStreamState", 1, status);
    if (const int status = validity(from))
        return report("rskCopyStreamState", 2, status);
    return to == from ? RSK_STATUS_OK : copy_state(*to, *from);
}

extern "C" int rskLeapfrogStream(rskStream it, vox_int k, vox_int nstreams) {
    stream *s = object(it);
    if (const int status = validity(s))
        return report("rskLeapfrogStream", 1, status);
    if (nstreams < 0)
        return RSK_ERROR_NSTREAMS;
    const uint32_t index = uint32_t(k);
    return change(s, leapfrog, nstreams, &index);
}

extern "C" int rskSkipAheadStream(rskStream it, uint64_t nskip) {
    stream *s = object(it);
    if (const int status = validity(s))
        return report("rskSkipAheadStream", 1, status);
    const uint32_t count[2] = {uint32_t(nskip), uint32_t(nskip >> 32)};
    return change(s, skip, 2, count);
}

extern "C" int rskGetStreamStateBrng(rskStream it) {
    const stream *s = object(it);
    if (const int status = validity(s))
        return report("rskGetStreamStateBrng", 1, status);
    return s->id;
}

VOX_FORTRAN_FORMS_OF(rskNewStream, int, rsknewstream_, RSKNEWSTREAM_,
                     (rskStream * out, const vox_int *id, const uint32_t *seed_word),
                     (out, *id, *seed_word));
VOX_FORTRAN_FORMS_OF(rskNewStreamEx, int, rsknewstreamex_, RSKNEWSTREAMEX_,
                     (rskStream * out, const vox_int *id, const vox_int *n, const uint32_t *params),
                     (out, *id, *n, params));
VOX_FORTRAN_FORMS_OF(rskDeleteStream, int, rskdeletestream_, RSKDELETESTREAM_, (rskStream * out),
                     (out));
VOX_FORTRAN_FORMS_OF(rskCopyStream, int, rskcopystream_, RSKCOPYSTREAM_,
                     (rskStream * out, const rskStream *source), (out, *source));
VOX_FORTRAN_FORMS_OF(rskCopyStreamState, int, rskcopystreamstate_, RSKCOPYSTREAMSTATE_,
                     (const rskStream *destination, const rskStream *source),
                     (*destination, *source));
VOX_FORTRAN_FORMS_OF(rskLeapfrogStream, int, rskleapfrogstream_, RSKLEAPFROGSTREAM_,
                     (const rskStream *it, const vox_int *k, const vox_int *nstreams),
                     (*it, *k, *nstreams));
VOX_FORTRAN_FORMS_OF(rskSkipAheadStream, int, rskskipaheadstream_, RSKSKIPAHEADSTREAM_,
                     (const rskStream *it, const uint64_t *nskip), (*it, *nskip));
VOX_FORTRAN_FORMS_OF(rskGetStreamStateBrng, int, rskgetstreamstatebrng_, RSKGETSTREAMSTATEBRNG_,
                     (const rskStream *it), (*it));
