// conversions.cpp - conversions between layouts beside memcpy of the tensor's bytes, in the same run, on one thread.
//
//   bench_conversions [--path N] [words...]
//
// Only cases whose names have one of the words, if there are any; N is a processor type, by default the best.
// "memcpy" is its time over the conversion's: 1 is as fast, 0.7 means 70% of its rate. Then come the routine that the
// conversion has chosen, and the nanoseconds of its create and delete calls.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/peers/peers.hpp"
#include "dnn/conversion.hpp"
#include "dnn/orb_layouts.hpp"
#include "vox/vox.h"

namespace {

using record = vox::dnn::layout;
using sizes = std::vector<uint64_t>;

template <class T>
record permuted(const sizes &size, const sizes &order) {
    uint64_t stride[32], step = 1;
    for (const uint64_t i : order) {
        stride[i] = step;
        step *= size[i];
    }
    record l;
    dnn::fill_plain<T>(&l, 0, size.size(), size.data(), stride);
    return l;
}

template <class T>
record weights(const sizes &s, uint64_t b) {
    const uint64_t block[] = {1, 1, b, b}, w = b * b, h = w * s[0], i = h * s[1];
    const uint64_t strides[] = {w, 1, h, 1, i, b, i * (s[2] / b), 1};
    record l;
    dnn::fill_blocked<T>(&l, 0, 4, s.data(), block, strides, 0);
    return l;
}

template <class T>
struct functions;
#define FUNCTIONS(P, T)                                                                            \
    template <>                                                                                    \
    struct functions<T> {                                                                          \
        static constexpr auto create = dnnConversionCreate_##P;                                    \
        static constexpr auto execute = dnnConversionExecute_##P;                                  \
        static constexpr auto remove = dnnDelete_##P;                                              \
        static constexpr auto orb_data = vox_dnn_LayoutFillOrbData_##P;                            \
        static constexpr auto orb_fwd = vox_dnn_LayoutFillOrbFilterFwd_##P;                        \
        static constexpr auto orb_bwd = vox_dnn_LayoutFillOrbFilterBwd_##P;                        \
        static constexpr auto routine = vox_dnn_ConversionRoutine_##P;                             \
    };
FUNCTIONS(F32, float)
FUNCTIONS(F64, double)

struct buffer {
    explicit buffer(size_t bytes) : p(std::aligned_alloc(4096, (bytes + 4095) / 4096 * 4096)) {
        if (!p)
            std::exit(1);
        std::memset(p, 1, bytes);
    }
    ~buffer() { std::free(p); }
    buffer(const buffer &) = delete;
    void *p;
};

std::vector<std::string> words;

template <class T>
void measure(const std::string &what, const sizes &size, const record &from, const record &to) {
    std::string name = what + (sizeof(T) == 4 ? " s" : " d");
    for (const uint64_t n : size)
        name += " " + std::to_string(n);
    bool wanted = words.empty();
    for (const std::string &w : words)
        wanted |= name.find(w) != name.npos;
    if (!wanted)
        return;
    using f = functions<T>;
    dnnPrimitive_t c = nullptr;
    auto *const s = const_cast<record *>(&from), *const d = const_cast<record *>(&to);
    if (f::create(&c, s, d)) {
        std::printf("%s: cannot be created\n", name.c_str());
        std::exit(1);
    }
    uint64_t bytes = sizeof(T);
    for (const uint64_t n : size)
        bytes *= n;
    const buffer a(dnn::memory_bytes(from)), b(dnn::memory_bytes(to));
    const buffer x(bytes), y(bytes);
    const std::vector<double> times =
        peers::best_times(2, {0.1, bytes > 10000000 ? 2.0 : 0.4}, [&](size_t k) {
            if (k == 0)
                f::execute(c, a.p, b.p);
            else
                std::memcpy(y.p, x.p, bytes);
        });
    const std::vector<double> create = peers::best_times(1, {0.01, 0.05}, [&](size_t) {
        dnnPrimitive_t other;
        f::create(&other, s, d);
        f::remove(other);
    });
    std::printf("%-44s %8.1f %8.2f   %-30s %6.0f\n", name.c_str(), 2e-9 * double(bytes) / times[0],
                times[1] / times[0], f::routine(static_cast<vox::dnn::conversion *>(c)),
                create[0] * 1e9);
    std::fflush(stdout);
    f::remove(c);
}

template <class T>
void measure_images(const vox::dnn::image_sizes &s) {
    const sizes size = {s.width, s.height, s.channels, s.images};
    const record nchw = permuted<T>(size, {0, 1, 2, 3}), nhwc = permuted<T>(size, {2, 0, 1, 3});
    record orb;
    functions<T>::orb_data(&orb, &s);
    const std::string border = s.border1 > 0 ? " bordered" : "";
    measure<T>("NCHW to OrbData" + border, size, nchw, orb);
    measure<T>("OrbData to NCHW" + border, size, orb, nchw);
    measure<T>("NHWC to OrbData" + border, size, nhwc, orb);
    measure<T>("OrbData to NHWC" + border, size, orb, nhwc);
    if (s.border1 > 0)
        return;
    measure<T>("NCHW to NHWC", size, nchw, nhwc);
    measure<T>("NHWC to NCHW", size, nhwc, nchw);
    measure<T>("NCHW to NCHW", size, nchw, nchw);
}

template <class T>
void measure_weights(const vox::dnn::filter_sizes &s) {
    const sizes size = {s.width, s.height, s.inputs, s.outputs};
    const record plain = permuted<T>(size, {0, 1, 2, 3});
    record fwd, bwd;
    functions<T>::orb_fwd(&fwd, &s);
    functions<T>::orb_bwd(&bwd, &s);
    measure<T>("weights to OrbFilterFwd", size, plain, fwd);
    measure<T>("OrbFilterFwd to weights", size, fwd, plain);
    measure<T>("weights to OrbFilterBwd", size, plain, bwd);
    measure<T>("OrbFilterBwd to weights", size, bwd, plain);
    measure<T>("OrbFilterFwd to OrbFilterBwd", size, fwd, bwd);
    for (const uint64_t b : {8, 16}) {
        const std::string blocks = std::to_string(b) + "x" + std::to_string(b);
        measure<T>("weights to " + blocks, size, plain, weights<T>(size, b));
        measure<T>("weights from " + blocks, size, weights<T>(size, b), plain);
    }
}

template <class T>
void measure_all() {
    for (const uint64_t images : {1, 32}) { // within the caches and beyond
        measure_images<T>({56, 56, 64, images, 0, 0});
        measure_images<T>({56, 56, 64, images, 1, 1});
        measure_images<T>({14, 14, 256, 4 * images, 0, 0});
    }
    measure_images<T>({224, 224, 3, 32, 0, 0});
    measure_images<T>({224, 224, 3, 32, 3, 3});
    measure_images<T>({64, 64, 128, 32, 0, 0});
    measure_weights<T>({3, 3, 64, 64, 1});
    measure_weights<T>({3, 3, 1024, 2048, 1});
    measure_weights<T>({1, 1, 4096, 4096, 1});
}

} // namespace

int main(int argc, char **argv) {
    setenv("VOX_CPU_VENDOR", "ANY", 1);
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--path") == 0 && i + 1 < argc)
            setenv("VOX_DEBUG_CPU_TYPE", argv[++i], 1);
        else
            words.push_back(argv[i]);
    vox_set_num_threads(1);
    std::printf("%-44s %8s %8s   %-30s %6s\n", "", "GB/s", "memcpy", "routine", "create");
    measure_all<float>();
    measure_all<double>();
}
