// peers.cpp - see peers.hpp.
#include "bench/peers/peers.hpp"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <immintrin.h>
#include <thread>

namespace {

struct candidate {
    const char *name, *serial, *threaded;
};

// Where Debian puts them.
#define DEBIAN "/usr/lib/x86_64-linux-gnu/"
constexpr candidate candidates[] = {
    {"OpenBLAS", DEBIAN "openblas-serial/libblas.so.3", DEBIAN "openblas-pthread/libblas.so.3"},
    {"BLIS", DEBIAN "blis-serial/libblas.so.3", DEBIAN "blis-pthread/libblas.so.3"},
};

[[noreturn]] void usage() {
    std::fprintf(stderr, "options: --threads N, --path best|TYPE, --max-n N\n");
    std::exit(2);
}

__attribute__((target("avx2"))) double sum_of(const double *p, size_t n) {
    __m256d a = _mm256_setzero_pd(), b = a, c = a, d = a;
    for (size_t i = 0; i + 16 <= n; i += 16) {
        a = _mm256_or_pd(a, _mm256_load_pd(p + i));
        b = _mm256_or_pd(b, _mm256_load_pd(p + i + 4));
        c = _mm256_or_pd(c, _mm256_load_pd(p + i + 8));
        d = _mm256_or_pd(d, _mm256_load_pd(p + i + 12));
    }
    return _mm256_cvtsd_f64(_mm256_or_pd(_mm256_or_pd(a, b), _mm256_or_pd(c, d)));
}

} // namespace

peers::options peers::parse_options(int argc, char **argv) {
    options o;
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 == argc)
            usage();
        const std::string name = argv[i], value = argv[i + 1];
        if (name == "--threads")
            o.threads = std::atoi(value.c_str());
        else if (name == "--path")
            o.path = value == "def" ? "0" : value;
        else if (name == "--max-n")
            o.max_n = std::atol(value.c_str());
        else
            usage();
    }
    return o;
}

void *peers::library::find(const char *symbol) const {
    void *const address = dlsym(handle_, symbol);
    if (!address) {
        std::fprintf(stderr, "%s has no %s\n", name.c_str(), symbol);
        std::exit(1);
    }
    return address;
}

std::vector<peers::library> peers::open_libraries(const options &o) {
    const std::string threads = std::to_string(o.threads);
    for (const char *variable :
         {"OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "BLIS_NUM_THREADS", "VOX_NUM_THREADS"})
        setenv(variable, threads.c_str(), 1);
    if (o.path == "best") {
        setenv("VOX_CPU_VENDOR", "ANY", 1);
    } else {
        setenv("VOX_DEBUG_CPU_TYPE", o.path.c_str(), 1);
        // The best that the peer does with the same instructions; the user may choose another.
        if (o.path == "0")
            setenv("OPENBLAS_CORETYPE", "Prescott", 0);
    }
    std::vector<library> opened;
    void *own = dlopen(VOX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!own) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    opened.emplace_back("VOX", own);
    for (const candidate &c : candidates) {
        void *handle =
            dlopen(o.threads > 1 ? c.threaded : c.serial, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        if (handle)
            opened.emplace_back(c.name, handle);
    }
    return opened;
}

void peers::print_header(const std::vector<library> &libraries, const char *unit) {
    std::printf("%10s", "n");
    for (const library &l : libraries)
        std::printf("%12s ns", l.name.c_str());
    std::printf("%12s  best peer / VOX\n", unit);
}

void peers::print_line(long n, const std::vector<double> &seconds, double work) {
    std::printf("%10ld", n);
    for (double s : seconds)
        std::printf("%15.1f", s * 1e9);
    std::printf("%12.2f", work / seconds[0] * 1e-9);
    if (seconds.size() > 1)
        std::printf("%17.2f", *std::min_element(seconds.begin() + 1, seconds.end()) / seconds[0]);
    std::printf("\n");
    std::fflush(stdout);
}

double peers::read_bandwidth(size_t bytes, int threads) {
    const size_t n = bytes / sizeof(double) / size_t(threads) / 16 * 16;
    auto *const block =
        static_cast<double *>(std::aligned_alloc(64, n * size_t(threads) * sizeof(double)));
    std::memset(block, 0, n * size_t(threads) * sizeof(double));
    double best = 0;
    for (int round = 0; round < 20; ++round) {
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::thread> team;
        for (int t = 1; t < threads; ++t)
            team.emplace_back([=] {
                volatile double sink = sum_of(block + size_t(t) * n, n);
                (void)sink;
            });
        volatile double sink = sum_of(block, n);
        (void)sink;
        for (std::thread &t : team)
            t.join();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        best = std::max(best, double(n * size_t(threads) * sizeof(double)) / time.count());
    }
    std::free(block);
    return best;
}
