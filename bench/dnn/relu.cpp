// relu.cpp - ReLU beside what the machine allows: beyond the caches the rate of memcpy in the same run, in them
// the rate of a loop that does nothing but store vectors.
//
//   VOX_CPU_VENDOR=ANY bench_relu [KiB of each buffer...]
//
// Rates count what is read and written, so that backward, which reads two buffers, is held to a copy of as many
// bytes. Prints GB/s, and the ratios; one thread unless OMP_NUM_THREADS or VOX_NUM_THREADS says more, memcpy
// and the stores are always one thread's. At the end, what a create call takes beside its allocation.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/peers/peers.hpp"
#include "vox/vox.h"

namespace {

constexpr peers::effort effort = {0.2, 1.5};

typedef float vector __attribute__((vector_size(64)));

// Four stores a round, as wide as the machine's; `memory` keeps the compiler from leaving any out.
__attribute__((noinline)) void store_all(float *p, size_t n) {
    const vector v = {};
    for (size_t i = 0; i < n; i += 64) {
        *reinterpret_cast<vector *>(p + i) = v;
        *reinterpret_cast<vector *>(p + i + 16) = v;
        *reinterpret_cast<vector *>(p + i + 32) = v;
        *reinterpret_cast<vector *>(p + i + 48) = v;
        __asm__ volatile("" : : : "memory");
    }
}

template <class T, class CreateLayout, class Forward, class Backward, class Execute>
void run(const char *name, size_t kib, CreateLayout create_layout, Forward forward,
         Backward backward, Execute execute) {
    const size_t bytes = kib * 1024, n = bytes / sizeof(T), one = 1;
    dnnLayout_t layout;
    dnnPrimitive_t f, b;
    if (create_layout(&layout, 1, &n, &one) || forward(&f, nullptr, layout, T(0.1)) ||
        backward(&b, nullptr, layout, layout, T(0.1)))
        std::exit(1);
    // Apart by other than powers of two, so that no two buffers compete for the same lines.
    const size_t apart = (bytes + 4095) / 4096 * 4096 + 2048 + 64;
    char *const memory = static_cast<char *>(std::aligned_alloc(64, 5 * apart));
    if (!memory)
        std::exit(1);
    std::memset(memory, 0, 5 * apart);
    T *buffer[5];
    for (size_t i = 0; i < 5; ++i) {
        buffer[i] = reinterpret_cast<T *>(memory + i * apart);
        for (size_t j = 0; j < n; ++j)
            buffer[i][j] = T(int(j * 7919 % 1009) - 500);
    }
    void *forward_on[DNN_RES_COUNT] = {buffer[0], buffer[1]};
    void *backward_on[DNN_RES_COUNT] = {buffer[0]};
    backward_on[DNN_RES_DIFF_DST] = buffer[1], backward_on[DNN_RES_DIFF_SRC] = buffer[2];
    const auto times = peers::best_times(4, effort, [&](size_t which) {
        switch (which) {
        case 0:
            execute(f, forward_on);
            break;
        case 1:
            execute(b, backward_on);
            break;
        case 2:
            std::memcpy(buffer[4], buffer[3], bytes);
            break;
        case 3:
            store_all(reinterpret_cast<float *>(buffer[4]), bytes / sizeof(float));
        }
    });
    const double gb = 1e-9 * double(bytes);
    std::printf("%s %8zu KiB  forward %6.1f GB/s: %.2f of memcpy, %.2f of stores   "
                "backward %6.1f GB/s: %.2f of memcpy, %.2f of stores\n",
                name, kib, 2 * gb / times[0], times[2] / times[0], times[3] / times[0],
                3 * gb / times[1], 1.5 * times[2] / times[1], times[3] / times[1]);
    std::fflush(stdout);
    std::free(memory);
    dnnDelete_F32(f);
    dnnDelete_F32(b);
    dnnLayoutDelete_F32(layout);
}

// Nanoseconds of a create call and of the allocation in it, both with what undoes them.
void creation() {
    const size_t size[] = {64, 56, 56, 32}, stride[] = {1, 64, 3584, 200704};
    dnnLayout_t layout;
    if (dnnLayoutCreate_F32(&layout, 4, size, stride))
        std::exit(1);
    const auto times = peers::best_times(4, effort, [&](size_t which) {
        void *made = nullptr;
        if (which == 0) {
            dnnReLUCreateForward_F32(&made, nullptr, layout, 0);
            dnnDelete_F32(made);
        } else if (which == 1) {
            dnnReLUCreateBackward_F32(&made, nullptr, layout, layout, 0);
            dnnDelete_F32(made);
        } else if (which == 2) {
            dnnLayoutCreate_F32(&made, 4, size, stride);
            dnnLayoutDelete_F32(made);
        } else {
            vox_serv_free(vox_serv_malloc(2736, 64));
        }
    });
    std::printf("create and delete: ReLU forward %.0f ns, backward %.0f ns, layout %.0f ns; an "
                "allocation alone %.0f ns\n",
                1e9 * times[0], 1e9 * times[1], 1e9 * times[2], 1e9 * times[3]);
    dnnLayoutDelete_F32(layout);
}

} // namespace

int main(int argc, char **argv) {
    std::vector<size_t> sizes = {4, 8, 12, 128, 1024, 65536, 262144};
    if (argc > 1)
        sizes.clear();
    for (int i = 1; i < argc; ++i)
        sizes.push_back(size_t(std::atol(argv[i])));
    if (!std::getenv("OMP_NUM_THREADS") && !std::getenv("VOX_NUM_THREADS"))
        vox_set_num_threads(1);
    for (const size_t kib : sizes) {
        run<float>("single", kib, dnnLayoutCreate_F32, dnnReLUCreateForward_F32,
                   dnnReLUCreateBackward_F32, dnnExecute_F32);
        run<double>("double", kib, dnnLayoutCreate_F64, dnnReLUCreateForward_F64,
                    dnnReLUCreateBackward_F64, dnnExecute_F64);
    }
    creation();
}
