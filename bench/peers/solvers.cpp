// solvers.cpp - see solvers.hpp.
//
// A routine is a struct: its names, its operations, what it begins with, its call, its residual.
// Residuals multiply a vector of random signs: a factorisation that is wrong anywhere shows in every
// product, and a check of n = 3000 takes n^2 operations and not the n^3 of the routine itself.
#include "bench/peers/solvers.hpp"

#include "bench/peers/matrices.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

using peers::adjoint_product;
using peers::conjugate;
using peers::definite_matrix;
using peers::hermitian_product;
using peers::library;
using peers::minus;
using peers::norm;
using peers::problem_shape;
using peers::product;
using peers::random_matrix;
using peers::real_of;
using peers::signs;
using peers::wide;
using peers::wide_vector;

template <class... A>
int call(void *function, A... arguments) {
    int info = 0;
    reinterpret_cast<void (*)(A..., int *)>(function)(arguments..., &info);
    return info;
}

// What a routine works on. a and b are what it is given, each time again.
template <class T>
struct problem {
    int m, n, columns; // of A and A, of B
    std::vector<T> original, a, b;
    mutable std::vector<T> tau;
    mutable std::vector<int> pivots;

    size_t bytes() const { return (a.size() + b.size()) * sizeof(T); }
};

// One set of operands in memory, and the workspace of who works on it.
template <class T>
struct working {
    T *a, *b, *work;
    int lwork;
};

// In units of rounding of A x: rounding errors of n^2 elements are of either sign, so that their
// norm grows as that of A itself, without a factor n (Higham and Mary, A New Approach to Probabilistic
// Rounding Error Analysis, SIAM J. Sci. Comput. 41(5), 2019).
template <class T>
double scaled(double residual, double scale) {
    return residual / (double(std::numeric_limits<real_of<T>>::epsilon()) * scale);
}

// What elements grow to in an elimination, with which its rounding errors grow.
template <class T>
double growth(const problem<T> &p, const working<T> &w) {
    double most = 0, eliminated = 0;
    for (int j = 0; j < p.n; ++j)
        for (int i = 0; i < p.m; ++i) {
            const size_t at = size_t(j) * size_t(p.m) + size_t(i);
            most = std::max(most, double(std::abs(p.original[at])));
            if (i <= j)
                eliminated = std::max(eliminated, double(std::abs(w.a[at])));
        }
    return std::max(1.0, eliminated / most);
}

// What most routines have in common.
struct common {
    static constexpr bool square = true, workspace = false;
    static constexpr int columns = 0; // right-hand sides

    template <class T>
    static std::vector<T> matrix(int m, int n) {
        return random_matrix<T>(m, n, 0);
    }
    template <class T>
    static void prepare(problem<T> &, char, const library &) {}
};

void *helpers(const library &helper, char letter, const char *symbol) {
    const std::string name = letter + std::string(symbol) + "_";
    void *const function = helper.find(name);
    if (!function) {
        std::fprintf(stderr, "peers: %s has no %s\n", helper.name.c_str(), name.c_str());
        std::exit(1);
    }
    return function;
}

struct getrf : common {
    static constexpr const char *name = "getrf", *symbol = "getrf";
    static constexpr bool square = false;

    static double operations(double m, double n) {
        const double k = std::min(m, n);
        return 2 * m * n * k - (m + n) * k * k + 2 * k * k * k / 3;
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, &p.m, &p.n, w.a, &p.m, p.pivots.data());
    }
    // || A x - P (L (U x)) ||
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        const wide_vector<T> x = signs<T>(p.n);
        const int k = std::min(p.m, p.n);
        const auto stored = [&](int i, int j) { return w.a[size_t(j) * size_t(p.m) + size_t(i)]; };
        const wide_vector<T> ux =
            product<T>(k, p.n, x, [&](int i, int j) { return i <= j ? stored(i, j) : T(0); });
        wide_vector<T> lux =
            product<T>(p.m, k, ux, [&](int i, int j) { return i > j ? stored(i, j) : T(i == j); });
        for (int i = k; i-- > 0;)
            std::swap(lux[size_t(i)], lux[size_t(p.pivots[size_t(i)]) - 1]);
        return scaled<T>(norm(minus(product(p.m, p.n, p.original.data(), x), lux)),
                         growth(p, w) * norm(p.original) * norm(x));
    }
};

struct potrf : common {
    static constexpr const char *name = "potrf", *symbol = "potrf";

    static double operations(double, double n) { return n * n * n / 3 + n * n / 2; }
    template <class T>
    static std::vector<T> matrix(int, int n) {
        return definite_matrix<T>(n);
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, "L", &p.n, w.a, &p.n);
    }
    // || A x - L (L^H x) ||
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        const wide_vector<T> x = signs<T>(p.n);
        const auto lower = [&](int i, int j) {
            return i >= j ? w.a[size_t(j) * size_t(p.n) + size_t(i)] : T(0);
        };
        const wide_vector<T> lhx =
            product<T>(p.n, p.n, x, [&](int i, int j) { return conjugate(lower(j, i)); });
        return scaled<T>(
            norm(minus(product(p.n, p.n, p.original.data(), x), product<T>(p.n, p.n, lhx, lower))),
            norm(p.original) * norm(x));
    }
};

struct geqrf : common {
    static constexpr const char *name = "geqrf", *symbol = "geqrf";
    static constexpr bool square = false, workspace = true;

    static double operations(double m, double n) { return 2 * getrf::operations(m, n); }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, &p.m, &p.n, w.a, &p.m, p.tau.data(), w.work, &w.lwork);
    }
    // || A x - Q (R x) ||, Q as the product of its reflectors
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        const wide_vector<T> x = signs<T>(p.n);
        const auto stored = [&](int i, int j) {
            return wide<T>(w.a[size_t(j) * size_t(p.m) + size_t(i)]);
        };
        wide_vector<T> y = product<T>(
            p.m, p.n, x, [&](int i, int j) { return i <= j ? stored(i, j) : wide<T>(0); });
        for (int j = std::min(p.m, p.n); j-- > 0;) {
            wide<T> dot = y[size_t(j)];
            for (int i = j + 1; i < p.m; ++i)
                dot += conjugate(stored(i, j)) * y[size_t(i)];
            dot *= wide<T>(p.tau[size_t(j)]);
            y[size_t(j)] -= dot;
            for (int i = j + 1; i < p.m; ++i)
                y[size_t(i)] -= dot * stored(i, j);
        }
        return scaled<T>(norm(minus(product(p.m, p.n, p.original.data(), x), y)),
                         norm(p.original) * norm(x));
    }
};

struct getri : common {
    static constexpr const char *name = "getri", *symbol = "getri";
    static constexpr bool workspace = true;

    static double operations(double, double n) { return 4 * n * n * n / 3; }
    template <class T>
    static void prepare(problem<T> &p, char letter, const library &helper) {
        call(helpers(helper, letter, "getrf"), &p.n, &p.n, p.a.data(), &p.n, p.pivots.data());
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, &p.n, w.a, &p.n, p.pivots.data(), w.work, &w.lwork);
    }
    // || x - X (A x) ||: rows of X satisfy the smaller bound.
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        const wide_vector<T> x = signs<T>(p.n);
        const wide_vector<T> ax = product(p.n, p.n, p.original.data(), x);
        const std::vector<T> inverse(w.a, w.a + p.a.size());
        return scaled<T>(norm(minus(x, product(p.n, p.n, w.a, ax))),
                         norm(p.original) * norm(inverse) * norm(x));
    }
};

struct potri : common {
    static constexpr const char *name = "potri", *symbol = "potri";

    static double operations(double, double n) { return 2 * n * n * n / 3; }
    template <class T>
    static std::vector<T> matrix(int, int n) {
        return definite_matrix<T>(n);
    }
    template <class T>
    static void prepare(problem<T> &p, char letter, const library &helper) {
        call(helpers(helper, letter, "potrf"), "L", &p.n, p.a.data(), &p.n);
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, "L", &p.n, w.a, &p.n);
    }
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        const wide_vector<T> x = signs<T>(p.n);
        const wide_vector<T> ax = product(p.n, p.n, p.original.data(), x);
        const wide_vector<T> back = hermitian_product(p.n, w.a, ax);
        // The inverse is no smaller than what it makes of this vector.
        return scaled<T>(norm(minus(x, back)), norm(p.original) * norm(back) / norm(ax) * norm(x));
    }
};

// || B x - A (X x) ||
template <class T>
double solve_residual(const problem<T> &p, const working<T> &w) {
    const wide_vector<T> x = signs<T>(p.columns);
    const wide_vector<T> solution = product(p.n, p.columns, w.b, x);
    const wide_vector<T> difference = minus(product(p.n, p.columns, p.b.data(), x),
                                            product(p.n, p.n, p.original.data(), solution));
    return scaled<T>(norm(difference), norm(p.original) * norm(solution));
}

template <int right_hand_sides>
struct gesv : common {
    static constexpr const char *name = right_hand_sides == 1 ? "gesv_1" : "gesv_100";
    static constexpr const char *symbol = "gesv";
    static constexpr int columns = right_hand_sides;

    static double operations(double, double n) {
        return 2 * n * n * n / 3 + 2 * n * n * right_hand_sides;
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, &p.n, &p.columns, w.a, &p.n, p.pivots.data(), w.b, &p.n);
    }
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        return solve_residual(p, w) / growth(p, w);
    }
};

struct gels : common {
    static constexpr const char *name = "gels", *symbol = "gels";
    static constexpr bool square = false, workspace = true;
    static constexpr int columns = 1;

    static double operations(double m, double n) {
        return geqrf::operations(m, n) + 4 * m * n - n * n;
    }
    template <class T>
    static int run(void *f, const problem<T> &p, const working<T> &w) {
        return call(f, "N", &p.m, &p.n, &p.columns, w.a, &p.m, w.b, &p.m, w.work, &w.lwork);
    }
    // || A^H (b - A x) ||, but for square matrices, which leave no rest.
    template <class T>
    static double residual(const problem<T> &p, const working<T> &w) {
        if (p.m == p.n)
            return solve_residual(p, w);
        const wide_vector<T> x(w.b, w.b + p.n), b(p.b.begin(), p.b.end());
        const wide_vector<T> rest = minus(b, product(p.m, p.n, p.original.data(), x));
        const double size = norm(p.original);
        return scaled<T>(norm(adjoint_product(p.m, p.n, p.original.data(), rest)),
                         size * (size * norm(x) + norm(b)));
    }
};

template <class R, class T>
problem<T> problem_of(const problem_shape &shape, const library &helper) {
    problem<T> p{shape.m, shape.n, R::columns, R::template matrix<T>(shape.m, shape.n),
                 {},      {},      {},         {}};
    p.a = p.original;
    p.b = random_matrix<T>(p.m, p.columns, 104729);
    p.tau.resize(size_t(std::min(p.m, p.n)));
    p.pivots.resize(size_t(std::min(p.m, p.n)));
    R::template prepare<T>(p, peers::type_letters[shape.type], helper);
    return p;
}

// The workspace that a function asks for.
template <class R, class T>
std::vector<T> workspace_of(void *function, problem<T> &p) {
    if (!R::workspace)
        return {};
    T size = 0;
    R::run(function, p, working<T>{p.a.data(), p.b.data(), &size, -1});
    return std::vector<T>(size_t(std::max(1.0, double(std::real(size)))));
}

template <class T>
working<T> working_on(T *a, T *b, std::vector<T> &workspace) {
    return {a, b, workspace.data(), int(workspace.size())};
}

template <class R>
double residual_of(const problem_shape &shape, void *function, const library &helper) {
    return peers::with_type(shape.type, [&]<class T>(T) {
        problem<T> p = problem_of<R, T>(shape, helper);
        std::vector<T> a = p.a, b = p.b, workspace = workspace_of<R, T>(function, p);
        const working<T> w = working_on(a.data(), b.data(), workspace);
        if (R::run(function, p, w) != 0)
            return double(INFINITY);
        return R::residual(p, w);
    });
}

// A call destroys what it is given. So several copies are made before the clock runs, as many as
// stay in the innermost cache together, and the calls on all of them are timed at once.
constexpr size_t cached_bytes = 16384;

template <class T>
class copies {
  public:
    explicit copies(const problem<T> &p)
        : given_(p), stride_((p.bytes() + 64) / 64 * 64 + 64),
          count_(std::clamp<size_t>(cached_bytes / stride_, 1, 64)),
          memory_(static_cast<char *>(
              std::aligned_alloc(4096, (count_ * stride_ + 4095) / 4096 * 4096))) {
        if (!memory_)
            std::abort();
    }
    ~copies() { std::free(memory_); }
    copies(const copies &) = delete;
    copies &operator=(const copies &) = delete;

    long count() const { return long(count_); }
    T *a(long i) const { return reinterpret_cast<T *>(memory_ + size_t(i) * stride_); }
    T *b(long i) const { return a(i) + given_.a.size(); }
    void restore() {
        for (long i = 0; i < count(); ++i) {
            std::memcpy(a(i), given_.a.data(), given_.a.size() * sizeof(T));
            if (!given_.b.empty())
                std::memcpy(b(i), given_.b.data(), given_.b.size() * sizeof(T));
        }
    }

  private:
    const problem<T> &given_;
    const size_t stride_, count_;
    char *const memory_;
};

template <class R>
std::vector<double> seconds_of(const problem_shape &shape, const std::vector<void *> &functions,
                               const library &helper, peers::effort allowed) {
    using clock = std::chrono::steady_clock;
    return peers::with_type(shape.type, [&]<class T>(T) {
        problem<T> p = problem_of<R, T>(shape, helper);
        copies<T> memory(p);
        std::vector<std::vector<T>> workspaces;
        for (void *f : functions)
            workspaces.push_back(workspace_of<R, T>(f, p));
        return peers::best_rounds(functions.size(), allowed, [&](long calls, size_t c) {
            const long rounds = (calls + memory.count() - 1) / memory.count();
            clock::duration spent{};
            for (long round = 0; round < rounds; ++round) {
                memory.restore();
                const auto start = clock::now();
                for (long i = 0; i < memory.count(); ++i)
                    R::run(functions[c], p, working_on(memory.a(i), memory.b(i), workspaces[c]));
                spent += clock::now() - start;
            }
            return std::chrono::duration<double>(spent).count() / double(rounds * memory.count());
        });
    });
}

template <class R>
constexpr peers::solver row = {R::name,       R::symbol,      R::square,
                               R::operations, residual_of<R>, seconds_of<R>};

constexpr peers::solver table[] = {row<getrf>, row<potrf>,   row<geqrf>,     row<getri>,
                                   row<potri>, row<gesv<1>>, row<gesv<100>>, row<gels>};

} // namespace

std::span<const peers::solver> peers::solvers() { return table; }
