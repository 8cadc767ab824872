// objects.cpp - see objects.hpp.
#include "rng/objects.hpp"

#include <string.h>

#include "rng/chunks.hpp"
#include "vox/service.h"

vox::rng::stream *vox::rng::new_object(int id, const brng_properties &row) {
    const size_t bytes = state_bytes(row);
    auto *s = static_cast<stream *>(vox_serv_malloc(sizeof(stream) + bytes, 128));
    if (!s)
        return nullptr;
    *s = {id, live, {}, nullptr};
    memset(s + 1, 0, bytes);
    return s;
}

void vox::rng::delete_object(stream *s) {
    if (!s)
        return;
    s->marker = 0;
    delete_chunks(*s);
    vox_serv_free(s);
}

int vox::rng::validate_state(stream *s, const brng_properties &row) {
    const int status = row.init(validate, s, 0, nullptr);
    return status == unknown_method ? ok : status;
}
