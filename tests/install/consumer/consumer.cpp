// consumer.cpp - the inner product of the README, in complex numbers of the C++ library.
#include <complex>
#include <cstdio>

#define vox_complex_float std::complex<float>
#define vox_complex_double std::complex<double>
#include <vox/vox.h>

int main() {
    const std::complex<double> x[3] = {{1, 1}, 2, 3}, y[3] = {{4, -4}, 3, 6};
    std::complex<double> dot;
    cblas_zdotu_sub(3, x, 1, y, 1, &dot);
    std::printf("%g\n", dot.real());
}
