// abstract.cpp - making streams on numbers of the user's.
#include "rng/brng/abstract.hpp"

#include <math.h>

#include "rng/entry/valid.hpp"
#include "rng/objects.hpp"

namespace {

using namespace vox::rng;

template <class Parameters>
int new_stream(rskStream *out, brng_row which, const Parameters &parameters) {
    if (*parameters.n <= 0 || !parameters.buffer || !parameters.callback)
        return RSK_ERROR_BAD_ARGS;
    if constexpr (requires { parameters.a; })
        if (!(*parameters.a < *parameters.b) || !isfinite(*parameters.a) ||
            !isfinite(*parameters.b))
            return RSK_ERROR_BAD_ARGS;
    if (!out)
        return RSK_ERROR_NULL_PTR;
    const int id = (which + 1) << 20;
    brng_properties row;
    if (const int status = rskGetBrngProperties(id, &row))
        return status;
    stream *s = new_object(id, row);
    *out = handle(s);
    if (!s)
        return RSK_ERROR_NO_MEMORY;
    return row.init(seed, s, 1, reinterpret_cast<const uint32_t *>(&parameters));
}

} // namespace

extern "C" int rskiNewAbstractStream(rskStream *out, vox_int n, uint32_t *buffer,
                                     rskiCallback callback) {
    return new_stream(out, IABSTRACT, iabstract_parameters{&n, buffer, callback});
}

extern "C" int rskdNewAbstractStream(rskStream *out, vox_int n, double *buffer, double a, double b,
                                     rskdCallback callback) {
    return new_stream(out, DABSTRACT, dabstract_parameters{&n, buffer, &a, &b, callback});
}

extern "C" int rsksNewAbstractStream(rskStream *out, vox_int n, float *buffer, float a, float b,
                                     rsksCallback callback) {
    return new_stream(out, SABSTRACT, sabstract_parameters{&n, buffer, &a, &b, callback});
}

VOX_FORTRAN_FORMS_OF(rskiNewAbstractStream, int, rskinewabstractstream_, RSKINEWABSTRACTSTREAM_,
                     (rskStream * out, const vox_int *n, uint32_t *buffer, rskiCallback callback),
                     (out, *n, buffer, callback));
VOX_FORTRAN_FORMS_OF(rskdNewAbstractStream, int, rskdnewabstractstream_, RSKDNEWABSTRACTSTREAM_,
                     (rskStream * out, const vox_int *n, double *buffer, const double *a,
                      const double *b, rskdCallback callback),
                     (out, *n, buffer, *a, *b, callback));
VOX_FORTRAN_FORMS_OF(rsksNewAbstractStream, int, rsksnewabstractstream_, RSKSNEWABSTRACTSTREAM_,
                     (rskStream * out, const vox_int *n, float *buffer, const float *a,
                      const float *b, rsksCallback callback),
                     (out, *n, buffer, *a, *b, callback));
