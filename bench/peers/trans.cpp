// trans.cpp - matrix copies and transpositions beside a peer's and beside memcpy of the same bytes.
//
//   peers_trans [options]
//     --types sd       only these types
//     --path best      code path of VOX, as peers_blas has it
//     --threads N      of every library
//     --n 100,1000     these squares instead of the usual shapes
//     --sum            ?omatadd and ?imatcopy as well
//
// By rows, alpha = 1, leading dimensions as small as can be, operands aligned to 64 bytes and warm where they
// fit. "memcpy" and a peer's name head the ratio of its time to VOX's: above 1 VOX is faster. "padded" is
// the same call with leading dimensions 16 elements longer, for powers of two: its time over VOX's, so 0.75
// means that a power of two loses a quarter. Ends with status 1 if results differ.
#include "bench/peers/peers.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using function = void(const char *, const char *, const int *, const int *, const void *,
                      const void *, const int *, void *, const int *);
using in_place = void(const char *, const char *, const int *, const int *, const void *, void *,
                      const int *, const int *);
using sum = void(const char *, const char *, const char *, const int *, const int *, const void *,
                 const void *, const int *, const void *, const void *, const int *, void *,
                 const int *);

constexpr char letters[] = "sdcz";
constexpr size_t sizes[] = {4, 8, 8, 16};
const double one_d[2] = {1, 0};
const float one_s[2] = {1, 0};

struct options {
    std::string types = letters, path = "best";
    int threads = 1;
    std::vector<int> squares;
    bool others = false;
};

struct shape {
    int rows, cols;
};

// Memory for the largest case of a run.
class block {
  public:
    explicit block(size_t bytes) : p_(std::aligned_alloc(4096, (bytes + 4095) / 4096 * 4096)) {
        if (!p_)
            std::exit(1);
        std::memset(p_, 0, bytes);
        for (size_t i = 0; i < bytes / 4; ++i)
            static_cast<float *>(p_)[i] = float(i % 1021);
    }
    ~block() { std::free(p_); }
    block(const block &) = delete;
    block &operator=(const block &) = delete;
    void *get() const { return p_; }

  private:
    void *p_;
};

const void *one(size_t type) { return type % 2 ? (const void *)one_d : one_s; }

struct call {
    size_t type;
    char trans;
    shape of;
    int pad; // of both leading dimensions
    size_t bytes() const { return size_t(of.rows) * size_t(of.cols) * sizes[type]; }
    void make(function *f, const void *a, void *b) const {
        const int lda = of.cols + pad, ldb = (trans == 'N' ? of.cols : of.rows) + pad;
        f("R", &trans, &of.rows, &of.cols, one(type), a, &lda, b, &ldb);
    }
};

std::string symbol(const char *prefix, size_t type, const char *name) {
    return std::string(prefix) + letters[type] + name + "_";
}

bool agree(const call &c, function *vox, function *peer, const void *a, void *b, void *other) {
    std::memset(b, 1, c.bytes());
    std::memset(other, 2, c.bytes());
    c.make(vox, a, b);
    c.make(peer, a, other);
    return std::memcmp(b, other, c.bytes()) == 0;
}

void measure(const call &c, const std::vector<peers::library> &libraries, const void *a, void *b,
             void *other, int &failures) {
    auto *const vox =
        reinterpret_cast<function *>(libraries[0].find(symbol("vox_", c.type, "omatcopy")));
    std::vector<function *> all = {vox};
    for (size_t l = 1; l < libraries.size(); ++l)
        if (void *const f = libraries[l].find(symbol("", c.type, "omatcopy")))
            all.push_back(reinterpret_cast<function *>(f));
    for (size_t f = 1; f < all.size(); ++f)
        if (!agree(c, vox, all[f], a, b, other)) {
            std::printf("FAILED: results differ\n");
            ++failures;
        }
    const bool power_of_two = c.of.rows == c.of.cols && (c.of.rows & (c.of.rows - 1)) == 0;
    call padded = c;
    padded.pad = 16;
    const size_t candidates = all.size() + 1 + power_of_two;
    const std::vector<double> times =
        peers::best_times(candidates, {0.05, c.bytes() > 100000000 ? 2.0 : 0.5}, [&](size_t k) {
            if (k < all.size())
                c.make(all[k], a, b);
            else if (k == all.size())
                std::memcpy(b, a, c.bytes());
            else
                padded.make(vox, a, b);
        });
    std::printf("%comatcopy_%c %6d x %-6d %10.1f %8.2f", letters[c.type], c.trans, c.of.rows,
                c.of.cols, 2e-9 * double(c.bytes()) / times[0], times[all.size()] / times[0]);
    for (size_t f = 1; f < all.size(); ++f)
        std::printf(" %20.2f", times[f] / times[0]);
    if (power_of_two)
        std::printf(" %8.2f", times.back() / times[0]);
    std::printf("\n");
    std::fflush(stdout);
}

// The sum and the transposition in place: their times over that of memcpy, and a peer's.
void measure_others(size_t type, int n, const std::vector<peers::library> &libraries, void *a,
                    void *b, void *c) {
    auto *const add = reinterpret_cast<sum *>(libraries[0].find(symbol("vox_", type, "omatadd")));
    std::vector<in_place *> all = {
        reinterpret_cast<in_place *>(libraries[0].find(symbol("vox_", type, "imatcopy")))};
    for (size_t l = 1; l < libraries.size(); ++l)
        if (void *const f = libraries[l].find(symbol("", type, "imatcopy")))
            all.push_back(reinterpret_cast<in_place *>(f));
    const size_t bytes = size_t(n) * size_t(n) * sizes[type];
    const std::vector<double> times =
        peers::best_times(all.size() + 3, {0.05, bytes > 100000000 ? 2.0 : 0.5}, [&](size_t k) {
            if (k < all.size())
                all[k]("R", "T", &n, &n, one(type), a, &n, &n);
            else if (k == all.size())
                std::memcpy(b, a, bytes);
            else
                add("R", k == all.size() + 1 ? "N" : "T", "N", &n, &n, one(type), a, &n, one(type),
                    b, &n, c, &n);
        });
    std::printf("%c n = %-6d imatcopy_t %8.2f", letters[type], n, times[all.size()] / times[0]);
    for (size_t f = 1; f < all.size(); ++f)
        std::printf(" (%.2f)", times[f] / times[0]);
    std::printf(" omatadd_nn %8.2f omatadd_tn %8.2f\n", times[all.size()] / times[all.size() + 1],
                times[all.size()] / times[all.size() + 2]);
    std::fflush(stdout);
}

options parse(int argc, char **argv) {
    options o;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        const bool last = i + 1 == argc;
        if (name == "--sum")
            o.others = true;
        else if (name == "--types" && !last)
            o.types = argv[++i];
        else if (name == "--path" && !last)
            o.path = argv[++i];
        else if (name == "--threads" && !last)
            o.threads = std::atoi(argv[++i]);
        else if (name == "--n" && !last)
            for (const std::string &n : peers::split(argv[++i]))
                o.squares.push_back(std::max(1, std::atoi(n.c_str())));
        else {
            std::fprintf(stderr, "see the first lines of bench/peers/trans.cpp for the options\n");
            std::exit(2);
        }
    }
    return o;
}

} // namespace

int main(int argc, char **argv) {
    const options o = parse(argc, argv);
    const std::vector<peers::library> libraries = peers::open_libraries(o.path, o.threads);
    std::vector<shape> shapes;
    for (int n : o.squares)
        shapes.push_back({n, n});
    if (shapes.empty())
        shapes = {{32, 32},      {50, 50},     {64, 64},     {100, 100},   {128, 128},
                  {200, 200},    {256, 256},   {512, 512},   {1000, 1000}, {1024, 1024},
                  {2000, 2000},  {2048, 2048}, {4000, 4000}, {4096, 4096}, {8000, 8000},
                  {100, 100000}, {100000, 100}};
    std::printf("path %s, %d thread(s)\n%-26s %10s %8s", o.path.c_str(), o.threads, "", "GB/s",
                "memcpy");
    for (size_t l = 1; l < libraries.size(); ++l)
        if (libraries[l].find("domatcopy_"))
            std::printf(" %20s", libraries[l].name.c_str());
    std::printf(" %8s\n", "padded");
    int failures = 0;
    for (size_t type = 0; type < 4; ++type) {
        if (o.types.find(letters[type]) == std::string::npos)
            continue;
        size_t most = 0;
        for (const shape &s : shapes)
            most = std::max(most, size_t(s.rows + 16) * size_t(s.cols + 16) * sizes[type]);
        const block a(most), b(most), other(most);
        for (char trans : {'T', 'N'})
            for (const shape &s : shapes)
                measure({type, trans, s, 0}, libraries, a.get(), b.get(), other.get(), failures);
        if (o.others)
            for (const shape &s : shapes)
                if (s.rows == s.cols)
                    measure_others(type, s.rows, libraries, a.get(), b.get(), other.get());
    }
    return failures ? 1 : 0;
}
