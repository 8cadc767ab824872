// streams.cpp - making, changing and deleting streams.
#include "rng/entry/valid.hpp"
#include "rng/registry.hpp"

namespace {

using namespace vox::rng;

bool is_abstract(int id) {
    return id == RSK_BRNG_IABSTRACT || id == RSK_BRNG_DABSTRACT || id == RSK_BRNG_SABSTRACT;
}

// A failing initialisation leaves the stream with the caller, who deletes it.
int new_stream(rskStream *out, int id, int n, const uint32_t *params) {
    brng_properties row;
    if (is_abstract(id) || rskGetBrngProperties(id, &row) != RSK_STATUS_OK)
        return RSK_ERROR_INVALID_BRNG;
    auto *s = static_cast<stream *>(vox_serv_allocate(size_t(row.stream_size), 128));
    *out = reinterpret_cast<rskStream>(s);
    if (!s)
        return RSK_ERROR_NO_MEMORY;
    *s = {id, live, {}, nullptr};
    return row.init(seed, s, n, params);
}

int change(const char *name, rskStream handle, int method, int n, const uint32_t *params) {
    stream *s = object(handle);
    if (const int status = validity(s))
        return report(name, 1, status);
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
    s->marker = 0;
    vox_serv_deallocate(s);
    *out = nullptr;
    return RSK_STATUS_OK;
}

extern "C" int rskLeapfrogStream(rskStream s, vox_int k, vox_int nstreams) {
    if (nstreams < 0 && validity(object(s)) == RSK_STATUS_OK)
        return RSK_ERROR_NSTREAMS;
    const uint32_t index = uint32_t(k);
    return change("rskLeapfrogStream", s, leapfrog, nstreams, &index);
}

extern "C" int rskSkipAheadStream(rskStream s, uint64_t nskip) {
    const uint32_t count[2] = {uint32_t(nskip), uint32_t(nskip >> 32)};
    return change("rskSkipAheadStream", s, skip, 2, count);
}

extern "C" int rskGetStreamStateBrng(rskStream handle) {
    const stream *s = object(handle);
    if (const int status = validity(s))
        return report("rskGetStreamStateBrng", 1, status);
    return s->id;
}
