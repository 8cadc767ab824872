// functions.cpp - vector mathematics beside SLEEF, glibc's libmvec and plain loops, in one run.
//
//   vm_peers [options]
//     --set 9            this kernel set (VOX_TQM_CODE_PATH), instead of the machine's best
//     --function Exp     only this one, or these when it is there more than once
//     --types d          only this precision
//     --n 4000           so many elements
//     --lengths          every function at n = 1, then from the caches into memory beside a copy
//     --threads          two threads beside one, from short vectors to long ones; needs two idle processors
//
// Nanoseconds an element, and ratios: a peer's time over ours, so above 1 this library is faster. A mark *
// means below what docs/vm.md promises. HA is compared with the better of SLEEF's 1.0-ulp functions and libmvec, LA
// with the better of SLEEF's 3.5-ulp functions and libmvec, EP with our LA. "loop" is a program's own loop of
// vectors without a look at errors, "copy" one that copies as many bytes as the function reads and writes.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>

#include "bench/peers/peers.hpp"
#include "bench/vm/peers.hpp"
#include "vox/tqm.h"

namespace {

using namespace vm_peers;

constexpr double ha_bar = 1.15, la_bar = 1.3, ep_bar = 1.5, baseline_bar = 1.2, thread_bar = 1.8;

// Arguments lie between these, evenly; Powx has `exponent` for its second one.
struct range {
    double from, to;
};
struct function {
    const char *name, *c_name; // C's is null where other libraries have none
    int arguments;
    range a, b;
    operation loop;
};
constexpr double exponent = 1.7;
constexpr int fixed = -1; // in place of a number of arguments

const function functions[] = {
    {"Abs", nullptr, 1, {-10, 10}, {}, operation::copy},
    {"Add", nullptr, 2, {-10, 10}, {-10, 10}, operation::sum},
    {"Ceil", "ceil", 1, {-1000, 1000}, {}, operation::copy},
    {"Div", nullptr, 2, {-10, 10}, {1, 10}, operation::quotient},
    {"Exp", "exp", 1, {-20, 20}, {}, operation::none},
    {"Floor", "floor", 1, {-1000, 1000}, {}, operation::copy},
    {"Inv", nullptr, 1, {1, 100}, {}, operation::inverse},
    {"InvSqrt", nullptr, 1, {1, 100}, {}, operation::none},
    {"Ln", "log", 1, {1e-3, 100}, {}, operation::none},
    {"Log1p", "log1p", 1, {-0.9, 10}, {}, operation::none},
    {"Mul", nullptr, 2, {-10, 10}, {-10, 10}, operation::product},
    {"Pow", "pow", 2, {0.1, 20}, {-10, 10}, operation::none},
    {"Powx", "pow", fixed, {0.1, 20}, {exponent, exponent}, operation::none},
    {"Round", "round", 1, {-1000, 1000}, {}, operation::copy},
    {"Sqr", nullptr, 1, {-10, 10}, {}, operation::square},
    {"Sqrt", "sqrt", 1, {1, 100}, {}, operation::root},
    {"Sub", nullptr, 2, {-10, 10}, {-10, 10}, operation::sum},
    {"Tanh", "tanh", 1, {-4, 4}, {}, operation::none},
};

struct options {
    int set = best_set();
    std::vector<std::string> only;
    std::string types = "sd";
    long n = 4000;
    bool lengths = false, threads = false;
};

[[noreturn]] void fail(const std::string &message) {
    std::fprintf(stderr, "vm_peers: %s\n", message.c_str());
    std::exit(1);
}

void *library;
template <class Function>
Function *find(const std::string &symbol) {
    void *const address = dlsym(library, symbol.c_str());
    if (!address)
        fail("the library has no " + symbol);
    return reinterpret_cast<Function *>(address);
}

// Two arguments, a result and the copy's bytes, each aligned to a page.
class operands {
  public:
    operands(precision p, long n, const function &f) {
        const size_t bytes = (size_t(n) * 8 * 3 / 2 + 8191) / 4096 * 4096;
        for (void *&v : vectors_)
            if (!(v = std::aligned_alloc(4096, bytes)))
                fail("out of memory");
            else
                std::memset(v, 0, bytes);
        fill(p, n, vectors_[0], f.a);
        fill(p, n, vectors_[1], f.b);
    }
    ~operands() {
        for (void *v : vectors_)
            std::free(v);
    }
    operands(const operands &) = delete;
    operands &operator=(const operands &) = delete;
    const void *a() const { return vectors_[0]; }
    const void *b() const { return vectors_[1]; }
    void *r() const { return vectors_[2]; }

  private:
    static void fill(precision p, long n, void *v, range between) {
        uint64_t state = 1;
        for (long i = 0; i < n; ++i) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            const double x =
                between.from + (between.to - between.from) * double(state >> 11) * 0x1p-53;
            if (p == real)
                static_cast<double *>(v)[i] = x;
            else
                static_cast<float *>(v)[i] = float(x);
        }
    }
    void *vectors_[3];
};

using call = std::function<void()>;

// mode 0: the thread's own, without setting another for the call.
template <class T>
call call_of(const function &f, char letter, long n, int64_t mode, const operands &o) {
    const std::string name = (mode ? "vm" : "v") + std::string(1, letter) + f.name;
    const T *const a = static_cast<const T *>(o.a()), *const b = static_cast<const T *>(o.b());
    T *const r = static_cast<T *>(o.r());
    const vox_int count = vox_int(n);
    if (f.arguments == 1) {
        auto *const g = find<void(vox_int, const T *, T *, int64_t)>(name);
        return [=] { g(count, a, r, mode); };
    }
    if (f.arguments == 2) {
        auto *const g = find<void(vox_int, const T *, const T *, T *, int64_t)>(name);
        return [=] { g(count, a, b, r, mode); };
    }
    auto *const g = find<void(vox_int, const T *, T, T *, int64_t)>(name);
    return [=] { g(count, a, T(exponent), r, mode); };
}

call ours(const function &f, precision p, long n, int64_t mode, const operands &o) {
    return p == real ? call_of<double>(f, 'd', n, mode, o) : call_of<float>(f, 's', n, mode, o);
}

call by_registers(void *g, const function &f, precision p, long n, const kernel_set &set,
                  const operands &o) {
    if (!g)
        return nullptr;
    auto *const loop = f.arguments == 1 ? set.loop->call_1[p] : set.loop->call_2[p];
    return [=, &o] { loop(g, n, o.a(), o.b(), o.r()); };
}

call copy_of(const function &f, precision p, long n, const kernel_set &set, const operands &o) {
    const long elements = f.arguments == 2 ? n * 3 / 2 : n;
    return [=, &o, &set] { set.loop->plain[p](operation::copy, elements, o.a(), nullptr, o.r()); };
}

// Seconds of each call, 0 for those that there are not.
std::vector<double> times_of(const std::vector<call> &calls, peers::effort allowed) {
    std::vector<size_t> present;
    for (size_t c = 0; c < calls.size(); ++c)
        if (calls[c])
            present.push_back(c);
    const std::vector<double> found = peers::best_times(
        present.size(), allowed, [&](size_t candidate) { calls[present[candidate]](); });
    std::vector<double> times(calls.size(), 0);
    for (size_t i = 0; i < present.size(); ++i)
        times[present[i]] = found[i];
    return times;
}

double better(double a, double b) { return a == 0 || (b != 0 && b < a) ? b : a; }

void print_time(double seconds, long n) {
    if (seconds > 0)
        std::printf(" %.3f |", seconds / double(n) * 1e9);
    else
        std::printf(" |");
}

void print_ratio(double other, double own, double bar) {
    if (other > 0)
        std::printf(" %.2f%s |", other / own, other / own < bar ? "*" : "");
    else
        std::printf(" |");
}

bool wanted(const options &o, const function &f) {
    if (!dlsym(library, (std::string("vd") + f.name).c_str())) {
        std::fprintf(stderr, "vm_peers: the library has no %s\n", f.name);
        return false;
    }
    if (o.only.empty())
        return true;
    for (const std::string &name : o.only)
        if (strcasecmp(name.c_str(), f.name) == 0)
            return true;
    return false;
}

// body(function, precision) for those that are asked for, a table for each precision.
template <class Body>
void for_each(const options &o, const char *head, int columns, const Body &body) {
    for (const precision p : {real, single}) {
        if (o.types.find(p == real ? 'd' : 's') == std::string::npos)
            continue;
        std::printf("\n| %s | %s |\n|---|", p == real ? "double" : "single", head);
        for (int c = 0; c < columns; ++c)
            std::printf("---|");
        std::printf("\n");
        for (const function &f : functions)
            if (wanted(o, f)) {
                std::printf("| %s |", f.name);
                body(f, p);
                std::printf("\n");
                std::fflush(stdout);
            }
    }
}

void compare(const options &o) {
    const kernel_set &set = kernel_sets[o.set];
    const bool baseline = set.bytes == 16;
    const auto row = [&](const function &f, precision p) {
        const operands on(p, o.n, f);
        const auto sleef = [&](const char *accuracy) -> call {
            if (!f.c_name)
                return nullptr;
            return by_registers(sleef_function(f.c_name, accuracy, p, set), f, p, o.n, set, on);
        };
        call u10 = sleef("u10"), u35 = sleef("u35");
        if (!u10)
            u10 = sleef(""); // exactly rounded: one accuracy
        const call mvec =
            f.c_name ? by_registers(mvec_function(f.c_name, f.arguments == 1 ? 1 : 2, p, set), f, p,
                                    o.n, set, on)
                     : nullptr;
        call loop = nullptr;
        if (f.loop != operation::none && f.loop != operation::copy)
            loop = [&] { set.loop->plain[p](f.loop, o.n, on.a(), on.b(), on.r()); };
        const std::vector<call> calls = {ours(f, p, o.n, TQM_HA, on),
                                         ours(f, p, o.n, TQM_LA, on),
                                         ours(f, p, o.n, TQM_EP, on),
                                         u10,
                                         u35,
                                         mvec,
                                         loop,
                                         copy_of(f, p, o.n, set, on)};
        const std::vector<double> t = times_of(calls, {0.1, 0.5});
        for (const double time : t)
            print_time(time, o.n);
        const double for_ha = better(t[3], t[5]);
        const double for_la = better(better(t[4], t[5]), t[4] == 0 ? t[3] : 0);
        // A root is one instruction for everybody.
        const bool bars = f.loop != operation::root;
        print_ratio(for_ha, t[0], !bars ? 0 : baseline ? baseline_bar : ha_bar);
        print_ratio(for_la, t[1], !bars ? 0 : baseline ? baseline_bar : la_bar);
        print_ratio(t[1], t[2], for_la > 0 && f.loop == operation::none && !baseline ? ep_bar : 0);
        print_ratio(t[6], t[0], 0);
        print_ratio(t[7], t[0], 0);
    };
    std::printf("kernel set %d (%s), n = %ld\n", o.set, set.name, o.n);
    for_each(
        o,
        "HA ns | LA ns | EP ns | SLEEF 1.0 | SLEEF 3.5 | libmvec | loop | copy | HA x | LA x | "
        "LA/EP | loop x | copy x",
        13, row);
}

constexpr peers::effort for_lengths = {0.02, 0.2};

void by_length(const options &o) {
    const kernel_set &set = kernel_sets[o.set];
    constexpr long lengths[] = {1000, 4000, 30000, 300000, 3000000};
    std::printf("kernel set %d (%s); HA: ns of a call with n = 1, then copy's time over ours\n",
                o.set, set.name);
    for_each(o, "n = 1, ns | 1000 | 4000 | 30000 | 300000 | 3000000", 6,
             [&](const function &f, precision p) {
                 {
                     const operands on(p, 1, f);
                     print_time(times_of({ours(f, p, 1, 0, on)}, for_lengths)[0], 1);
                 }
                 for (const long n : lengths) {
                     const operands on(p, n, f);
                     const std::vector<double> t = times_of(
                         {ours(f, p, n, TQM_HA, on), copy_of(f, p, n, set, on)}, for_lengths);
                     print_ratio(t[1], t[0], 0);
                 }
             });
}

void by_threads(const options &o) {
    constexpr long lengths[] = {100,    300,    1000,    3000,    10000,   30000,
                                100000, 300000, 1000000, 3000000, 10000000};
    auto *const set_threads = find<void(int)>("vox_set_num_threads");
    std::printf("kernel set %d (%s); HA: one thread's time over that of two\n", o.set,
                kernel_sets[o.set].name);
    std::string head;
    for (const long n : lengths)
        head += (head.empty() ? "" : " | ") + std::to_string(n);
    for_each(o, head.c_str(), int(std::size(lengths)), [&](const function &f, precision p) {
        for (const long n : lengths) {
            const operands on(p, n, f);
            const call one = ours(f, p, n, TQM_HA, on);
            const auto with = [&](int threads) {
                return [&, threads] {
                    set_threads(threads);
                    one();
                };
            };
            const std::vector<double> t = times_of({with(1), with(2)}, for_lengths);
            print_ratio(t[0], t[1], f.loop == operation::none && n >= 1000000 ? thread_bar : 0.97);
        }
    });
}

options parse(int argc, char **argv) {
    options o;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        const bool last = i + 1 == argc;
        if (name == "--lengths")
            o.lengths = true;
        else if (name == "--threads")
            o.threads = true;
        else if (name == "--set" && !last)
            o.set = std::atoi(argv[++i]);
        else if (name == "--function" && !last)
            o.only.push_back(argv[++i]);
        else if (name == "--types" && !last)
            o.types = argv[++i];
        else if (name == "--n" && !last)
            o.n = std::max(1, std::atoi(argv[++i]));
        else
            fail("see the first lines of bench/vm/functions.cpp for the options");
    }
    if (o.set < 0 || o.set > best_set())
        fail("this machine does not run that kernel set");
    return o;
}

} // namespace

int main(int argc, char **argv) {
    const options o = parse(argc, argv);
    setenv("VOX_CPU_VENDOR", "ANY", 1);
    setenv("VOX_TQM_CODE_PATH", std::to_string(o.set).c_str(), 1);
    setenv("VOX_NUM_THREADS", o.threads ? "2" : "1", 1);
    const char *const file = std::getenv("PEERS_VOX");
    library = dlopen(file ? file : VOX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        fail(dlerror());
    if (o.lengths)
        by_length(o);
    else if (o.threads)
        by_threads(o);
    else
        compare(o);
}
