// relu.cpp - ReLU with a slope for negative elements, forward and backward.
//
// Both directions are one rule: out = v where x > 0, slope v elsewhere; forward v is x, backward the
// gradient. Comparing and multiplying costs less than the memory's traffic, so what matters is whole
// vectors on aligned addresses and, for results beyond the caches, stores that bypass them.
#include "dnn/relu.hpp"

#include "dnn/entries.hpp"
#include "dnn/kernels/rows.hpp"
#include "dnn/threads.hpp"
#include "serv/simd.hpp"

namespace {
namespace dnn {

using simd::index_t;
using vox::dnn::relu;

// Results of so many bytes are in no cache when they are read again, and a line that is stored past the
// caches is not read first.
constexpr uint64_t streamed_bytes = 16 * 1024 * 1024;

// What the result is multiplied by, where x is the source. Choosing a factor takes fewer of the units that
// multiply and compare than choosing between products: in L1, 0.93 of the rate of stores alone, not 0.82.
template <class V, class T>
VOX_INLINED inline V factor(V x, T slope) {
    if constexpr (std::is_same_v<V, T>)
        return x > 0 ? T(1) : slope;
    else
        return x > V() ? simd::broadcast<sizeof(V)>(T(1)) : simd::broadcast<sizeof(V)>(slope);
}

// What is read and written; result() is made of elements or vectors, as `load` brings them.
template <class T>
struct forward_buffers {
    using type = T;
    const T *x;
    T *out;
    T slope;

    forward_buffers at(index_t in, index_t to) const { return {x + in, out + to, slope}; }
    bool in_place() const { return out == x; }
    template <class Load>
    auto result(Load load) const {
        const auto v = load(x);
        return v * factor(v, slope);
    }
};

template <class T>
struct backward_buffers {
    using type = T;
    const T *x, *dy;
    T *out;
    T slope;

    backward_buffers at(index_t in, index_t to) const { return {x + in, dy + to, out + to, slope}; }
    bool in_place() const { return out == x || out == dy; }
    template <class Load>
    auto result(Load load) const {
        return load(dy) * factor(load(x), slope);
    }
};

template <class B>
void some(const B &b, index_t i, index_t n) {
    simd::store_partial(
        b.out + i, b.result([=](auto *p) VOX_INLINED { return simd::load_partial(p + i, n); }), n);
}

// N vectors, stored past the caches or not.
template <bool Stream, int N, class B>
VOX_INLINED inline void vectors(const B &b, index_t i) {
    using T = typename B::type;
    constexpr int bytes = Stream ? simd::stream_bytes : simd::vector_bytes;
    constexpr int w = bytes / int(sizeof(T));
    typename simd::vec_of<T, bytes>::type result[N];
    simd::unroll<N>([&](auto k) VOX_INLINED {
        result[k] = b.result([=](auto *p) VOX_INLINED {
            return simd::in_register(simd::load<bytes>(p + i + k * w));
        });
    });
    simd::unroll<N>([&](auto k) VOX_INLINED {
        if constexpr (Stream)
            simd::stream(b.out + i + k * w, result[k]);
        else
            simd::store(b.out + i + k * w, result[k]);
    });
}

// n elements side by side. The buffers come by value: behind a pointer they might be what a store changes.
template <bool Stream, class B>
VOX_INLINED inline void flat(B b, index_t n) {
    using T = typename B::type;
    constexpr index_t w = (Stream ? simd::stream_bytes : simd::vector_bytes) / int(sizeof(T));
    const index_t ahead = index_t(-reinterpret_cast<uintptr_t>(b.out) / sizeof(T)) % w;
    index_t i = ahead < n ? ahead : n;
    if (i > 0)
        some(b, 0, i);
    for (; i + 2 * w <= n; i += 2 * w)
        vectors<Stream, 2>(b, i);
    for (; i + w <= n; i += w)
        vectors<Stream, 1>(b, i);
    if (i < n)
        some(b, i, n - i);
    if (Stream)
        simd::streaming_done();
}

// n of so many elements altogether.
template <class B>
void flat_of(uint64_t count, const B &b, index_t n) {
    constexpr uint64_t size = sizeof(typename B::type);
    const bool stream = count >= streamed_bytes / size && !b.in_place() &&
                        reinterpret_cast<uintptr_t>(b.out) % size == 0;
    stream ? flat<true>(b, n) : flat<false>(b, n);
}

template <class B>
void dense(const B &b, uint64_t count) {
    using T = typename B::type;
    constexpr index_t line = 64 / int(sizeof(T));
    divide(count * sizeof(T), [&](int thread, int team) {
        const part lines = part_of(thread, team, index_t(count + line - 1) / line);
        const index_t begin = lines.begin * line, end = lines.end * line;
        if (begin < end)
            flat_of(count, b.at(begin, begin),
                    (end < index_t(count) ? end : index_t(count)) - begin);
    });
}

template <class B>
void one(const B &b) {
    *b.out = b.result([](auto *p) { return *p; });
}

// Elements of a row, of so many altogether.
template <class B>
void row_of(uint64_t count, const B &b, const loop &row) {
    if (row.from == 1 && row.to == 1)
        return flat_of(count, b, row.count);
    for (index_t i = 0; i < row.count; ++i)
        one(b.at(i * row.from, i * row.to));
}

// `in` is the layout of x, `out` that of the result.
template <class B>
void strided(const B &b, const layout &in, const layout &out, uint64_t count) {
    if (count == 0)
        return;
    divide(count * sizeof(typename B::type), [&](int thread, int team) {
        if (vox::dnn::has_axes(in) && vox::dnn::has_axes(out)) {
            const vox::dnn::axes from(in), to(out);
            vox::dnn::nests all(from, to);
            const B first = b.at(from.first, to.first);
            if (all.any()) {
                for (nest n; all.next(n);) {
                    const part some = part_of(thread, team, elements(n));
                    rows(n, some.begin, some.end, [&](index_t i, index_t j, const loop &row) {
                        row_of(count, first.at(i, j), row);
                    });
                }
                return;
            }
        }
        const part some = part_of(thread, team, index_t(count));
        for (index_t n = some.begin; n < some.end; ++n)
            one(b.at(index_t(in.offset(&in, uint64_t(n))), index_t(out.offset(&out, uint64_t(n)))));
    });
}

template <class T, class B>
void run(const relu<T> &r, const B &b, const layout &out) {
    const uint64_t count = element_count(out);
    if (r.kernel == vox::dnn::relu_dense)
        dense(b, count);
    else
        strided(b, r.data, out, count);
}

template <class T>
int forward(const primitive *p, void *const *resources) {
    const auto &r = *reinterpret_cast<const relu<T> *>(p);
    const auto *const x = static_cast<const T *>(resources[DNN_RES_SRC]);
    auto *const y = static_cast<T *>(resources[DNN_RES_DST]);
    if (!x || !y)
        return DNN_STATUS_BAD_ARGUMENT;
    run(r, forward_buffers<T>{x, y, r.slope}, r.data);
    return DNN_STATUS_OK;
}

template <class T>
int backward(const primitive *p, void *const *resources) {
    const auto &r = *reinterpret_cast<const relu<T> *>(p);
    const auto *const x = static_cast<const T *>(resources[DNN_RES_SRC]);
    const auto *const dy = static_cast<const T *>(resources[DNN_RES_DIFF_DST]);
    auto *const dx = static_cast<T *>(resources[DNN_RES_DIFF_SRC]);
    if (!x || !dy || !dx)
        return DNN_STATUS_BAD_ARGUMENT;
    run(r, backward_buffers<T>{x, dy, dx, r.slope}, r.diff);
    return DNN_STATUS_OK;
}

template <class T>
int layout_for(const primitive *p, dnnLayout_t *out, int resource) {
    const auto &r = *reinterpret_cast<const relu<T> *>(p);
    const bool back = r.direction == vox::dnn::relu_backward;
    if (resource == DNN_RES_SRC || (!back && resource == DNN_RES_DST))
        return hand_out(out, r.data);
    if (back && (resource == DNN_RES_DIFF_SRC || resource == DNN_RES_DIFF_DST))
        return hand_out(out, r.diff);
    return DNN_STATUS_BAD_ARGUMENT;
}

// What is asked of the data in both directions.
inline int check_data(const void *out, const layout *data) {
    if (!out || !data)
        return DNN_STATUS_BAD_ARGUMENT;
    if (data->flags != 0)
        return DNN_STATUS_NOT_IMPLEMENTED;
    const bool bordered = data->kind == vox::dnn::orb_data && (data->border1 | data->border2) != 0;
    return data->kind > vox::dnn::orb_data || bordered ? DNN_STATUS_BAD_ARGUMENT : DNN_STATUS_OK;
}

template <class T>
int create(dnnPrimitive_t *out, vox::dnn::relu_direction direction, const layout &data,
           const layout *diff, T slope, bool is_flat) {
    const layout &written = diff ? *diff : data;
    if (!takes<T>(written) || !fits<T>(data, element_count(written)))
        return DNN_STATUS_BAD_ARGUMENT;
    auto *const r = allocate<relu<T>>();
    if (!r)
        return DNN_STATUS_NO_MEMORY;
    r->header = {vox::dnn::relu_kind, 0,      diff ? backward<T> : forward<T>, {},
                 layout_for<T>,       nullptr};
    r->data = data;
    if (diff)
        r->diff = *diff;
    r->slope = slope;
    r->direction = direction;
    r->kernel = is_flat ? vox::dnn::relu_dense : vox::dnn::relu_strided;
    vox_dnn_getNThreads_F32(); // settled now, if it has not been
    *out = r;
    return DNN_STATUS_OK;
}

template <class T>
int ReLUCreateForward(dnnPrimitive_t *out, dnnPrimitiveAttributes_t, dnnLayout_t of_data, T slope) {
    const auto *const data = static_cast<const layout *>(of_data);
    if (const int status = check_data(out, data))
        return status;
    return create<T>(out, vox::dnn::relu_forward, *data, nullptr, slope, is_dense(*data));
}

template <class T>
int ReLUCreateBackward(dnnPrimitive_t *out, dnnPrimitiveAttributes_t, dnnLayout_t of_diff,
                       dnnLayout_t of_data, T slope) {
    const auto *const data = static_cast<const layout *>(of_data);
    const auto *const diff = static_cast<const layout *>(of_diff);
    if (!diff)
        return DNN_STATUS_BAD_ARGUMENT;
    if (diff->flags != 0)
        return DNN_STATUS_NOT_IMPLEMENTED;
    if (const int status = check_data(out, data))
        return status;
    return create<T>(out, vox::dnn::relu_backward, *data, diff, slope,
                     equal(*data, *diff) && is_dense(*data) && is_dense(*diff));
}

} // namespace dnn
} // namespace

VOX_DNN_KERNELS(VOX_DNN_RELU_ENTRIES)
