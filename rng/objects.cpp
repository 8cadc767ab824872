// objects.cpp - see objects.hpp.
#include "rng/objects.hpp"

#include "rng/chunks.hpp"
#include "vox/service.h"

vox::rng::stream *vox::rng::new_object(int id, const brng_properties &row) {
    auto *s = static_cast<stream *>(vox_serv_calloc(1, sizeof(stream) + state_bytes(row), 128));
    if (s)
        *s = {id, live, {}, nullptr};
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
