// scalars.hpp - routines on a few numbers: lengths, quotients, rotations, sums of squares, and what the
// arithmetic is like.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// scale^2 sum := x_1^2 + ... + x_n^2 + scale^2 sum; left alone where either is NaN.
template <class T>
void lassq(index_t n, const T *x, index_t incx, real_of<T> *scale, real_of<T> *sum);

// sqrt(x^2 + y^2), sqrt(x^2 + y^2 + z^2); real types.
template <class R>
R lapy2(R x, R y);
template <class R>
R lapy3(R x, R y, R z);

// p + i q := (a + i b) / (c + i d); real types. And x / y, complex ones.
template <class R>
void ladiv(R a, R b, R c, R d, R *p, R *q);
template <class T>
T ladiv(T x, T y);

// ( c        s ) (f)   (r)
// ( -conj(s) c ) (g) = (0)
template <class T>
void lartg(T f, T g, real_of<T> *c, T *s, T *r);

// Square roots of both where large is beyond 10^2000, which only infinity is.
template <class R>
void labad(R *small, R *large);

// What the letter, in either case, asks for; 0 for any other.
template <class R>
R lamch(char what);

} // namespace vox::lapack
