// distributions.hpp - from one description to every form of a distribution.
//
//   VOX_DISTRIBUTION(dRngGaussian, drnggaussian, DRNGGAUSSIAN, double, method > 2,
//                    (double, a, false), (double, sigma, sigma <= 0))
//
// defines the dispatching entry vox_rng_dRngGaussian of the kernels in rng/kernels, and the exported
// vdRngGaussian, vdrnggaussian_ and VDRNGGAUSSIAN_. It gives the type of the results, what is wrong with a
// method that is not negative, and each parameter with what is wrong with its value. Such a condition may
// name the parameters before it; it is false for a NaN, which therefore reaches the kernel.
//
// VOX_DISTRIBUTION_OF_ALL makes the exported forms alone, for a routine that is the same in all kernel sets.
#pragma once

#include <initializer_list>

#include "rng/entry/valid.hpp"
#include "serv/dispatch.hpp"

namespace vox::rng {

// The checks in their order, then kernel(stream). bad: of the parameters, the first of which is number 5.
template <class Kernel>
int draw(const char *name, vox_int method, bool unknown_method, rskStream handle, vox_int n,
         const void *r, std::initializer_list<bool> bad, const Kernel &kernel) {
    if (method < 0)
        return report(name, 1, RSK_ERROR_BAD_ARGS);
    stream *const s = object(handle);
    if (const int status = validity(s))
        return report(name, 2, status);
    if (n < 0)
        return report(name, 3, RSK_ERROR_BAD_ARGS);
    if (n == 0)
        return RSK_STATUS_OK;
    if (!r)
        return report(name, 4, RSK_ERROR_BAD_ARGS);
    if (unknown_method)
        return report(name, 1, RSK_ERROR_BAD_ARGS);
    vox_int position = 5;
    for (const bool wrong : bad) {
        if (wrong)
            return report(name, position, RSK_ERROR_BAD_ARGS);
        ++position;
    }
    return kernel(s);
}

} // namespace vox::rng

// X(parameter) for each, up to three.
#define VOX_EACH_PARAMETER(X, ...) __VA_OPT__(VOX_EACH_PARAMETER_1(X, __VA_ARGS__))
#define VOX_EACH_PARAMETER_1(X, parameter, ...)                                                    \
    X parameter __VA_OPT__(VOX_EACH_PARAMETER_2(X, __VA_ARGS__))
#define VOX_EACH_PARAMETER_2(X, parameter, ...)                                                    \
    X parameter __VA_OPT__(VOX_EACH_PARAMETER_3(X, __VA_ARGS__))
#define VOX_EACH_PARAMETER_3(X, parameter) X parameter

#define VOX_PARAMETER_VALUE(type, name, wrong) , type name
#define VOX_PARAMETER_ADDRESS(type, name, wrong) , const type *name
#define VOX_PARAMETER_NAME(type, name, wrong) , name
#define VOX_PARAMETER_CONTENT(type, name, wrong) , *name
#define VOX_PARAMETER_WRONG(type, name, wrong) wrong,

#define VOX_DISTRIBUTION(kernel, lower, UPPER, Result, unknown_method, ...)                        \
    VOX_DISPATCH_SET(rng, kernel, int,                                                             \
                     (int method, vox::rng::stream *s, int n,                                      \
                      Result *r VOX_EACH_PARAMETER(VOX_PARAMETER_VALUE, __VA_ARGS__)),             \
                     (method, s, n, r VOX_EACH_PARAMETER(VOX_PARAMETER_NAME, __VA_ARGS__)))        \
    VOX_DISTRIBUTION_OF_ALL(kernel, lower, UPPER, Result, unknown_method, __VA_ARGS__)

#define VOX_DISTRIBUTION_OF_ALL(kernel, lower, UPPER, Result, unknown_method, ...)                 \
    extern "C" int v##kernel(vox_int method, rskStream handle, vox_int n,                          \
                             Result *r VOX_EACH_PARAMETER(VOX_PARAMETER_VALUE, __VA_ARGS__)) {     \
        return vox::rng::draw(                                                                     \
            "v" #kernel, method, unknown_method, handle, n, r,                                     \
            {VOX_EACH_PARAMETER(VOX_PARAMETER_WRONG, __VA_ARGS__)}, [&](vox::rng::stream *s) {     \
                return vox_rng_##kernel(method, s, n,                                              \
                                        r VOX_EACH_PARAMETER(VOX_PARAMETER_NAME, __VA_ARGS__));    \
            });                                                                                    \
    }                                                                                              \
    VOX_FORTRAN_FORMS_OF(                                                                          \
        v##kernel, int, v##lower##_, V##UPPER##_,                                                  \
        (const vox_int *method, const rskStream *handle, const vox_int *n,                         \
         Result *r VOX_EACH_PARAMETER(VOX_PARAMETER_ADDRESS, __VA_ARGS__)),                        \
        (*method, *handle, *n, r VOX_EACH_PARAMETER(VOX_PARAMETER_CONTENT, __VA_ARGS__)));
