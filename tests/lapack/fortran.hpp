// fortran.hpp - LAPACK's Fortran forms for every element type, called by value.
#pragma once

#include <tuple>
#include <type_traits>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/element_types.hpp"
#include "vox/lapack.h"

namespace test {

// Q is or in real names, un in complex ones.
template <class T>
struct fortran;
#define FORTRAN(T, p, q, ...)                                                                      \
    template <>                                                                                    \
    struct fortran<T> {                                                                            \
        static constexpr auto getrf = p##getrf_;                                                   \
        static constexpr auto getrs = p##getrs_;                                                   \
        static constexpr auto gesv = p##gesv_;                                                     \
        static constexpr auto getri = p##getri_;                                                   \
        static constexpr auto laswp = p##laswp_;                                                   \
        static constexpr auto potrf = p##potrf_, potf2 = p##potf2_, potrf2 = p##potrf2_;           \
        static constexpr auto potri = p##potri_, lauum = p##lauum_;                                \
        static constexpr auto potrs = p##potrs_;                                                   \
        static constexpr auto posv = p##posv_;                                                     \
        static constexpr auto trtri = p##trtri_, trti2 = p##trti2_;                                \
        static constexpr auto trtrs = p##trtrs_;                                                   \
        static constexpr auto gecon = p##gecon_;                                                   \
        static constexpr auto pocon = p##pocon_;                                                   \
        static constexpr auto trcon = p##trcon_;                                                   \
        static constexpr auto lacn2 = p##lacn2_;                                                   \
        static constexpr auto geqrf = p##geqrf_, gelqf = p##gelqf_;                                \
        static constexpr auto geqr2 = p##geqr2_, gelq2 = p##gelq2_;                                \
        static constexpr auto geqp3 = p##geqp3_;                                                   \
        static constexpr auto orgqr = p##q##gqr_, orglq = p##q##glq_;                              \
        static constexpr auto org2r = p##q##g2r_, orgl2 = p##q##gl2_;                              \
        static constexpr auto ormqr = p##q##mqr_, ormlq = p##q##mlq_;                              \
        static constexpr auto orm2r = p##q##m2r_, orml2 = p##q##ml2_;                              \
        static constexpr auto larfg = p##larfg_;                                                   \
        static constexpr auto larf = p##larf_;                                                     \
        static constexpr auto larft = p##larft_;                                                   \
        static constexpr auto larfb = p##larfb_;                                                   \
        static constexpr auto gels = p##gels_;                                                     \
        static constexpr auto lange = p##lange_;                                                   \
        static constexpr auto lantr = p##lantr_;                                                   \
        static constexpr auto lansy = p##lansy_;                                                   \
        static constexpr auto lacpy = p##lacpy_;                                                   \
        static constexpr auto laset = p##laset_;                                                   \
        static constexpr auto lascl = p##lascl_;                                                   \
        static constexpr auto lassq = p##lassq_;                                                   \
        static constexpr auto lartg = p##lartg_;                                                   \
        __VA_ARGS__                                                                                \
    };
#define REAL(p)                                                                                    \
    static constexpr auto ladiv = p##ladiv_;                                                       \
    static constexpr auto lapy2 = p##lapy2_;                                                       \
    static constexpr auto lapy3 = p##lapy3_;                                                       \
    static constexpr auto lamch = p##lamch_;                                                       \
    static constexpr auto labad = p##labad_;
#define COMPLEX(p)                                                                                 \
    static constexpr auto ladiv = p##ladiv_;                                                       \
    static constexpr auto lanhe = p##lanhe_;
FORTRAN(float, s, or, REAL(s))
FORTRAN(double, d, or, REAL(d))
FORTRAN(vox_complex_float, c, un, COMPLEX(c))
FORTRAN(vox_complex_double, z, un, COMPLEX(z))
#undef FORTRAN
#undef REAL
#undef COMPLEX

// What a routine is passed for x: a pointer as it is, the elements of a vector, those of a matrix and its
// leading dimension, the address of anything else.
template <class X>
auto addresses(X &x) {
    if constexpr (std::is_pointer_v<std::decay_t<X>> || std::is_null_pointer_v<X>)
        return std::tuple(x);
    else if constexpr (requires { x.ld(); })
        return std::tuple(x.data(), &x.ld());
    else if constexpr (requires { x.data(); })
        return std::tuple(x.data());
    else
        return std::tuple(&x);
}
template <class Routine, class... X>
auto invoke(Routine *routine, X &&...x) {
    return std::apply(routine, std::tuple_cat(addresses(x)...));
}
// The same for what ends with info, which is the result.
template <class Routine, class... X>
vox_int call(Routine *routine, X &&...x) {
    vox_int info = -99;
    invoke(routine, x..., &info);
    return info;
}
// The same for what takes work and lwork last: the size is asked for first.
template <class T, class Routine, class... X>
vox_int call_with_work(Routine *routine, X &&...x) {
    T best{};
    if (const vox_int info = call(routine, x..., &best, -1))
        return info;
    std::vector<T> work(size_t(vox::real(best)));
    return call(routine, x..., work, vox_int(work.size()));
}

} // namespace test
