// peers.cpp - see peers.hpp.
#include "bench/peers/peers.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <immintrin.h>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

// A code path of this library, and the processors that OpenBLAS may be told of for its best with
// the same instructions; none: its own choice.
struct code_path {
    const char *name;
    int type;
    std::vector<const char *> cores;
};

const code_path code_paths[] = {
    {"best", -1, {}},
    {"def", 0, {"Prescott", "Core2"}}, // Core2 has more instructions than def, which only helps it
    {"ssse3", 2, {"Core2"}},
    {"sse42", 3, {"Nehalem"}},
    {"avx", 4, {"Sandybridge"}},
    {"avx2", 5, {"Haswell", "Zen"}},
    {"avx512", 7, {"SkylakeX"}},
};

constexpr int widest = 7; // the path above all others

// Where Debian puts them.
#define DEBIAN "/usr/lib/x86_64-linux-gnu/"
constexpr const char *openblas[] = {DEBIAN "openblas-serial/libopenblas.so.0",
                                    DEBIAN "openblas-pthread/libopenblas.so.0"};
constexpr const char *blis[] = {DEBIAN "blis-serial/libblis.so.4",
                                DEBIAN "blis-pthread/libblis.so.4"};
constexpr const char *reference = DEBIAN "blas/libblas.so.3";

[[noreturn]] void fail(const std::string &message) {
    std::fprintf(stderr, "peers: %s\n", message.c_str());
    std::exit(1);
}

const code_path &path_named(const std::string &name) {
    for (const code_path &p : code_paths)
        if (name == p.name)
            return p;
    fail("no code path " + name);
}

// Another file under the same inode would be the same library to the dynamic linker.
void *open_copy(const char *file) {
    namespace fs = std::filesystem;
    std::string copy = fs::temp_directory_path() / "peers-XXXXXX";
    const int descriptor = mkstemp(copy.data());
    if (descriptor < 0)
        fail("cannot create " + copy);
    close(descriptor);
    std::error_code failed;
    fs::copy_file(file, copy, fs::copy_options::overwrite_existing, failed);
    void *const handle =
        failed ? nullptr : dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    const std::string error = handle ? "" : failed ? file + (": " + failed.message()) : dlerror();
    fs::remove(copy);
    if (!handle)
        fail(error);
    return handle;
}

template <class Function>
Function *function(const peers::library &from, const char *symbol) {
    void *const address = from.find(symbol);
    if (!address)
        fail(from.name + " has no " + symbol);
    return reinterpret_cast<Function *>(address);
}

void set_threads(int threads) {
    const std::string value = std::to_string(threads);
    for (const char *variable :
         {"OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "BLIS_NUM_THREADS", "VOX_NUM_THREADS"})
        setenv(variable, value.c_str(), 1);
}

// The settings are read by the first calls that need them, so these calls come here.
peers::library open_vox(std::string name, const code_path &path, int threads) {
    set_threads(threads);
    if (path.type < 0)
        setenv("VOX_CPU_VENDOR", "ANY", 1);
    else
        setenv("VOX_DEBUG_CPU_TYPE", std::to_string(path.type).c_str(), 1);
    const char *const file = std::getenv("PEERS_VOX");
    peers::library vox(std::move(name), open_copy(file ? file : VOX_LIBRARY));
    if (path.type >= 0 && peers::path_of(vox) != path.type)
        fail(std::string("this machine does not run the code path ") + path.name);
    const int available = function<int()>(vox, "vox_get_max_threads")();
    if (available != threads)
        fail("VOX has " + std::to_string(available) + " threads");
    return vox;
}

peers::library open_openblas(const char *file, const char *core) {
    if (core)
        setenv("OPENBLAS_CORETYPE", core, 1);
    peers::library opened("OpenBLAS", open_copy(file));
    unsetenv("OPENBLAS_CORETYPE");
    const std::string runs = function<const char *()>(opened, "openblas_get_corename")();
    if (core && strcasecmp(core, runs.c_str()) != 0)
        fail("OpenBLAS runs " + runs + " and not " + core);
    opened.name += ":" + runs;
    return opened;
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

void *peers::library::find(const std::string &symbol) const {
    return dlsym(handle_, symbol.c_str());
}

std::vector<std::string> peers::split(const std::string &list) {
    std::vector<std::string> words;
    std::istringstream text(list);
    for (std::string word; std::getline(text, word, ',');)
        words.push_back(word);
    return words;
}

std::vector<peers::library> peers::open_libraries(const std::string &name, int threads) {
    const code_path &path = path_named(name);
    const bool threaded = threads > 1;
    std::vector<library> opened = {open_vox("VOX", path, threads)};
    if (std::filesystem::exists(openblas[threaded])) {
        if (path.cores.empty())
            opened.push_back(open_openblas(openblas[threaded], nullptr));
        for (const char *core : path.cores)
            opened.push_back(open_openblas(openblas[threaded], core));
    }
    // BLIS cannot be held to every path's instructions.
    if (path.cores.empty() && std::filesystem::exists(blis[threaded]))
        opened.emplace_back("BLIS", open_copy(blis[threaded]));
    if (opened.size() == 1)
        fail("no peer is installed (tools/setup bench)");
    // Eigen is compiled for this machine, so it has no lower paths.
    if (VOX_EIGEN[0] && !threaded && (path.type < 0 || path.type == widest))
        opened.emplace_back("Eigen", open_copy(VOX_EIGEN), 64);
    return opened;
}

int peers::path_of(const library &vox) { return function<int(int)>(vox, "vox_get_cpu_type")(0); }

std::vector<peers::library> peers::open_thread_counts(const std::string &name, int threads) {
    const code_path &path = path_named(name);
    return {open_vox("VOX x" + std::to_string(threads), path, threads),
            open_vox("VOX x1", path, 1)};
}

std::vector<peers::library> peers::open_reference() {
    std::vector<library> opened;
    if (std::filesystem::exists(reference))
        opened.emplace_back("reference", open_copy(reference));
    return opened;
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
