// distributions.hpp - what tests of distributions share: the list of them, and a generator whose numbers a
// test chooses.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace test {

enum class form { c, lower, upper };

// Any distribution: results as bytes, parameters as doubles.
struct distribution {
    const char *name;
    int methods;
    size_t element; // bytes
    std::vector<double> parameters;
    // What is wrong, and with which parameter.
    std::vector<std::pair<std::vector<double>, int>> bad;
    int (*call)(form, int method, rskStream, int n, void *r, const double *parameters);

    int draw(int method, rskStream s, int n, void *r) const {
        return call(form::c, method, s, n, r, parameters.data());
    }
    std::vector<char> bytes(int method, rskStream s, int n) const {
        std::vector<char> all(size_t(n) * element);
        EXPECT_EQ(draw(method, s, n, all.data()), 0) << name;
        return all;
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

inline const std::vector<distribution> &distributions() {
#define FORMS(name, lower, UPPER) forms_of<name, lower##_, UPPER##_>
    using bad = std::vector<std::pair<std::vector<double>, int>>;
    static const bad no_width = {{{2, 2}, 6}, {{3, -3}, 6}}, no_scale = {{{1, 0}, 6}, {{1, -2}, 6}};
    static const std::vector<distribution> all = {
        {"vsRngUniform",
         1,
         4,
         {-1, 3},
         no_width,
         FORMS(vsRngUniform, vsrnguniform, VSRNGUNIFORM)::call},
        {"vdRngUniform",
         1,
         8,
         {-1, 3},
         no_width,
         FORMS(vdRngUniform, vdrnguniform, VDRNGUNIFORM)::call},
        {"viRngUniform",
         1,
         4,
         {-10, 1000},
         no_width,
         FORMS(viRngUniform, virnguniform, VIRNGUNIFORM)::call},
        {"viRngUniformBits",
         1,
         4,
         {},
         {},
         FORMS(viRngUniformBits, virnguniformbits, VIRNGUNIFORMBITS)::call},
        {"viRngUniformBits32",
         1,
         4,
         {},
         {},
         FORMS(viRngUniformBits32, virnguniformbits32, VIRNGUNIFORMBITS32)::call},
        {"viRngUniformBits64",
         1,
         8,
         {},
         {},
         FORMS(viRngUniformBits64, virnguniformbits64, VIRNGUNIFORMBITS64)::call},
        {"viRngBernoulli",
         1,
         4,
         {0.3},
         {{{-0.01}, 5}, {{1.01}, 5}},
         FORMS(viRngBernoulli, virngbernoulli, VIRNGBERNOULLI)::call},
        {"vsRngGaussian",
         3,
         4,
         {1, 2},
         no_scale,
         FORMS(vsRngGaussian, vsrnggaussian, VSRNGGAUSSIAN)::call},
        {"vdRngGaussian",
         3,
         8,
         {1, 2},
         no_scale,
         FORMS(vdRngGaussian, vdrnggaussian, VDRNGGAUSSIAN)::call},
        {"vsRngExponential",
         1,
         4,
         {1, 2},
         no_scale,
         FORMS(vsRngExponential, vsrngexponential, VSRNGEXPONENTIAL)::call},
        {"vdRngExponential",
         1,
         8,
         {1, 2},
         no_scale,
         FORMS(vdRngExponential, vdrngexponential, VDRNGEXPONENTIAL)::call},
        {"viRngPoisson",
         1,
         4,
         {20},
         {{{0}, 5}, {{-1}, 5}, {{2.1e9}, 5}},
         FORMS(viRngPoisson, virngpoisson, VIRNGPOISSON)::call},
    };
#undef FORMS
    return all;
}

// A generator of words of 32 bits that come from a list, and uniforms from another; at the end of its list
// a request fails and has written nothing. Seed word: how many numbers are behind it.
struct script {
    static inline std::vector<double> uniforms;
    static inline std::vector<uint32_t> words;
    struct state {
        uint32_t next;
    };

    static int init(int method, vox::rng::stream *s, int, const uint32_t *params) {
        if (method != vox::rng::seed)
            return vox::rng::unknown_method;
        s->state<state>() = {params[0]};
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
    static const vox::rng::brng_properties &properties() {
        static const vox::rng::brng_properties row = {
            24,
            1,
            1,
            4,
            32,
            init,
            [](vox::rng::stream *s, int n, float *r, float a, float b) {
                return give(s, n, r, uniforms, [&](double u) { return a + (b - a) * float(u); });
            },
            [](vox::rng::stream *s, int n, double *r, double a, double b) {
                return give(s, n, r, uniforms, [&](double u) { return a + (b - a) * u; });
            },
            [](vox::rng::stream *s, int n, uint32_t *r) {
                return give(s, n, r, words, [](uint32_t w) { return w; });
            }};
        return row;
    }
    static int id() {
        static const int registered = vox::rng::rskRegisterBrng(&properties());
        return registered;
    }
};

class a_stream {
  public:
    explicit a_stream(int id, uint32_t seed = 0) { EXPECT_EQ(rskNewStream(&s_, id, seed), 0); }
    ~a_stream() { rskDeleteStream(&s_); }
    a_stream(const a_stream &) = delete;
    a_stream &operator=(const a_stream &) = delete;
    operator rskStream() const { return s_; }

  private:
    rskStream s_ = nullptr;
};

} // namespace test
