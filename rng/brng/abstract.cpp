// abstract.cpp - see abstract.hpp. The callback takes the time, so there is one copy for all kernel sets.
#include "rng/brng/abstract.hpp"

#include <algorithm>

#include "rng/registry.hpp"

namespace {

using namespace vox::rng;

// u of a number from the buffer. The user's number may lie outside of the interval or be no number, and the
// quotient may round to 1: u is the nearest in [0, 1 - 2^-53]. Halves, since b - a may overflow.
double unit(const iabstract_state &, uint32_t w) { return w * 0x1p-32; }

template <class State>
double unit(const State &state, typename State::element x) {
    const double a = state.a / 2.0, u = (x / 2.0 - a) / (state.b / 2.0 - a);
    return u > 0 ? std::min(u, 1 - 0x1p-53) : 0;
}

// The three outputs of one number.
uint32_t word(const iabstract_state &, uint32_t w) { return w; }

template <class State>
uint32_t word(const State &state, typename State::element x) {
    return uint32_t(unit(state, x) * 0x1p32);
}

float single_unit(const iabstract_state &, uint32_t w) { return float(w >> 8) * 0x1p-24f; }

template <class State>
float single_unit(const State &state, typename State::element x) {
    return std::min(float(unit(state, x)), 1 - 0x1p-24f);
}

// Asks for numbers to fill the empty buffer, of which `needed` are wanted at once.
template <class State>
int refill(stream *s, State &state, int needed) {
    int n = state.n, least = std::min(needed, state.consumed), most = state.consumed,
        place = state.index;
    const int result =
        state.callback(reinterpret_cast<rskStream>(s), &n, state.buffer, &least, &most, &place);
    if (result < 0)
        return RSK_ERROR_CALLBACK;
    // Nothing said: it has done what it had to. It cannot have done more than it could.
    const int written = result == 0 ? std::min(needed, state.consumed) : result;
    state.consumed -= std::min(written, state.consumed);
    return ok;
}

// The next n numbers: put(x) for each.
template <class State, class Put>
int deliver(stream *s, int n, Put put) {
    State &state = s->state<State>();
    if (n <= 0)
        return ok;
    if (!state.buffer)
        return RSK_ERROR_NULL_PTR;
    while (n > 0) {
        if (state.consumed == state.n)
            if (const int status = refill(s, state, n))
                return status;
        const int k = std::min({n, state.n - state.consumed, state.n - state.index});
        for (int i = 0; i < k; ++i)
            put(state, state.buffer[state.index + i]);
        n -= k;
        state.consumed += k;
        state.index = state.index + k == state.n ? 0 : state.index + k;
    }
    return ok;
}

template <class State>
int integers(stream *s, int n, uint32_t *r) {
    return deliver<State>(s, n, [&](const State &state, auto x) { *r++ = word(state, x); });
}

template <class State>
int singles(stream *s, int n, float *r, float a, float b) {
    return deliver<State>(
        s, n, [&](const State &state, auto x) { *r++ = a + (b - a) * single_unit(state, x); });
}

template <class State>
int doubles(stream *s, int n, double *r, double a, double b) {
    return deliver<State>(s, n,
                          [&](const State &state, auto x) { *r++ = a + (b - a) * unit(state, x); });
}

iabstract_state initial(const iabstract_parameters &p) {
    return {*p.n, 0, *p.n, p.buffer, p.callback};
}
dabstract_state initial(const dabstract_parameters &p) {
    return {*p.n, 0, *p.n, *p.a, *p.b, p.buffer, p.callback};
}
sabstract_state initial(const sabstract_parameters &p) {
    return {*p.n, 0, *p.n, *p.a, *p.b, p.buffer, p.callback};
}

template <class State, class Parameters>
int init(int method, stream *s, const uint32_t *params) {
    switch (method) {
    case seed:
        s->state<State>() = initial(*reinterpret_cast<const Parameters *>(params));
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return RSK_ERROR_NO_SKIPAHEAD;
    case validate: // addresses cannot be
        return bad_state;
    default:
        return unknown_method;
    }
}

} // namespace

#define ABSTRACT(name, size)                                                                       \
    static_assert(sizeof(stream) + sizeof(name##_state) == size);                                  \
    extern "C" int vox_rng_##name##_init(int method, stream *s, int, const uint32_t *params) {     \
        return init<name##_state, name##_parameters>(method, s, params);                           \
    }                                                                                              \
    extern "C" int vox_rng_##name##_i(stream *s, int n, uint32_t *r) {                             \
        return integers<name##_state>(s, n, r);                                                    \
    }                                                                                              \
    extern "C" int vox_rng_##name##_s(stream *s, int n, float *r, float a, float b) {              \
        return singles<name##_state>(s, n, r, a, b);                                               \
    }                                                                                              \
    extern "C" int vox_rng_##name##_d(stream *s, int n, double *r, double a, double b) {           \
        return doubles<name##_state>(s, n, r, a, b);                                               \
    }

ABSTRACT(iabstract, 48)
ABSTRACT(dabstract, 64)
ABSTRACT(sabstract, 56)
