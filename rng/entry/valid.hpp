// valid.hpp - what entry points ask of a stream, and how they report what they do not like.
#pragma once

#include "rng/stream.hpp"
#include "vox/rsk.h"
#include "vox/service.h"

namespace vox::rng {

// Reports argument number `position` of the function `name` and returns the status.
inline int report(const char *name, vox_int position, int status) {
    vox_serv_xerbla(name, &position, int(vox_serv_strnlen_s(name, 50)));
    return status;
}

inline stream *object(rskStream s) { return reinterpret_cast<stream *>(s); }
inline rskStream handle(stream *s) { return reinterpret_cast<rskStream>(s); }

// 0, or the status of a null stream or one whose marker is wrong.
inline int validity(const stream *s) {
    if (!s)
        return RSK_ERROR_NULL_PTR;
    return s->marker == live ? RSK_STATUS_OK : RSK_ERROR_BAD_STREAM;
}

} // namespace vox::rng
