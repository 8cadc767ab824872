// distributions.hpp - what tests of distributions share: the list of them, and a generator whose numbers a
// test chooses.
#pragma once

#include <tuple>
#include <type_traits>

#include "tests/rng/generator.hpp"

namespace test {

// Parameters of which one is wrong, and its place.
using bad_parameters = std::vector<std::pair<std::vector<double>, int>>;

enum class form { c, lower, upper };

// Any distribution: results as bytes, parameters as doubles.
struct distribution {
    const char *name;
    int methods;
    size_t element; // bytes
    int (*call)(form, int method, rskStream, int n, void *r, const double *parameters);
    std::vector<double> parameters;
    bad_parameters bad;

    int draw(int method, rskStream s, int n, void *r) const {
        return call(form::c, method, s, n, r, parameters.data());
    }
};

template <auto C, auto Lower, auto Upper>
struct forms_of;
template <class R, class... P, int (*C)(vox_int, rskStream, vox_int, R *, P...),
          int (*Lower)(const vox_int *, const rskStream *, const vox_int *, R *, const P *...),
          int (*Upper)(const vox_int *, const rskStream *, const vox_int *, R *, const P *...)>
struct forms_of<C, Lower, Upper> {
    using result = R;
    static int call(form f, int method, rskStream s, int n, void *r, const double *parameters) {
        return call(f, method, s, n, static_cast<R *>(r), parameters,
                    std::index_sequence_for<P...>());
    }
    template <size_t... I>
    static int call(form f, int method, rskStream s, int n, R *r,
                    [[maybe_unused]] const double *parameters, std::index_sequence<I...>) {
        if (f == form::c)
            return C(method, s, n, r, P(parameters[I])...);
        const std::tuple<P...> values{static_cast<P>(parameters[I])...};
        return (f == form::lower ? Lower : Upper)(&method, &s, &n, r, &std::get<I>(values)...);
    }
};

template <class Forms>
distribution row(const char *name, int methods, const std::vector<double> &parameters = {},
                 const bad_parameters &bad = {}) {
    return {name, methods, sizeof(typename Forms::result), Forms::call, parameters, bad};
}

inline const std::vector<distribution> &distributions() {
#define ROW(name, lower, UPPER, ...) row<forms_of<name, lower##_, UPPER##_>>(#name, __VA_ARGS__)
    static const bad_parameters no_width = {{{2, 2}, 6}, {{3, -3}, 6}},
                                no_scale = {{{1, 0}, 6}, {{1, -2}, 6}};
    static const std::vector<distribution> all = {
        ROW(vsRngUniform, vsrnguniform, VSRNGUNIFORM, 1, {-1, 3}, no_width),
        ROW(vdRngUniform, vdrnguniform, VDRNGUNIFORM, 1, {-1, 3}, no_width),
        ROW(viRngUniform, virnguniform, VIRNGUNIFORM, 1, {-10, 1000}, no_width),
        ROW(viRngUniformBits, virnguniformbits, VIRNGUNIFORMBITS, 1),
        ROW(viRngUniformBits32, virnguniformbits32, VIRNGUNIFORMBITS32, 1),
        ROW(viRngUniformBits64, virnguniformbits64, VIRNGUNIFORMBITS64, 1),
        ROW(viRngBernoulli, virngbernoulli, VIRNGBERNOULLI, 1, {0.3}, {{{-0.01}, 5}, {{1.01}, 5}}),
        ROW(vsRngGaussian, vsrnggaussian, VSRNGGAUSSIAN, 3, {1, 2}, no_scale),
        ROW(vdRngGaussian, vdrnggaussian, VDRNGGAUSSIAN, 3, {1, 2}, no_scale),
        ROW(vsRngExponential, vsrngexponential, VSRNGEXPONENTIAL, 1, {1, 2}, no_scale),
        ROW(vdRngExponential, vdrngexponential, VDRNGEXPONENTIAL, 1, {1, 2}, no_scale),
        ROW(viRngPoisson, virngpoisson, VIRNGPOISSON, 1, {20}, {{{0}, 5}, {{-1}, 5}, {{2.1e9}, 5}}),
    };
#undef ROW
    return all;
}

// A generator of words of 32 bits that come from a list, and uniforms from another; at the end of its list
// a request fails and has written nothing.
struct script {
    static inline std::vector<double> uniforms;
    static inline numbers words;
    struct state {
        uint32_t next;
    };

    static int init(int method, vox::rng::stream *s, int, const uint32_t *) {
        if (method != vox::rng::seed)
            return vox::rng::unknown_method;
        s->state<state>() = {0};
        return 0;
    }
    template <class T, class List, class Value>
    static int give(vox::rng::stream *s, int n, T *r, const List &list, const Value &value) {
        uint32_t &next = s->state<state>().next;
        if (next + size_t(n) > list.size())
            return RSK_ERROR_CALLBACK;
        for (int i = 0; i < n; ++i)
            r[i] = value(list[next++]);
        return 0;
    }
    template <class T>
    static int between(vox::rng::stream *s, int n, T *r, T a, T b) {
        return give(s, n, r, uniforms, [&](double u) { return a + (b - a) * T(u); });
    }
    static int integers(vox::rng::stream *s, int n, uint32_t *r) {
        return give(s, n, r, words, [](uint32_t w) { return w; });
    }
    static constexpr vox::rng::brng_properties properties() {
        return {24, 1, 1, 4, 32, init, between<float>, between<double>, integers};
    }
    static generator stream() {
        static const vox::rng::brng_properties row = properties();
        static const int id = vox::rng::rskRegisterBrng(&row);
        return generator(id);
    }
};

// n variates, of the numbers of a stream or those of the script.
template <class R, class... P>
std::vector<R> variates(int (*f)(vox_int, rskStream, vox_int, R *, P...), int method, rskStream s,
                        size_t n, std::type_identity_t<P>... parameters) {
    std::vector<R> r(n);
    EXPECT_EQ(f(method, s, vox_int(n), r.data(), parameters...), 0);
    return r;
}
template <class R, class... P>
std::vector<R> scripted(int (*f)(vox_int, rskStream, vox_int, R *, P...), int method, size_t n,
                        std::type_identity_t<P>... parameters) {
    return variates(f, method, script::stream(), n, parameters...);
}

} // namespace test
