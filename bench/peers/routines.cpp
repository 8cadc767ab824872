// routines.cpp - see routines.hpp.
#include "bench/peers/routines.hpp"

#include <algorithm>
#include <iterator>

namespace {

using enum peers::arg;
using peers::returned;
using peers::storage;

long extent(const peers::extents &size, char letter) {
    return letter == 'm' ? size.m : letter == 'n' ? size.n : size.k;
}

double general(const peers::extents &e) { return 2 * e.volume(); }
double left_square(const peers::extents &e) { return general({e.m, e.n, e.m}); }
double right_square(const peers::extents &e) { return general({e.m, e.n, e.n}); }
double left_triangle(const peers::extents &e) { return left_square(e) / 2; }
double right_triangle(const peers::extents &e) { return right_square(e) / 2; }
double half_result(const peers::extents &e) { return general({e.n, e.n + 1, e.k}) / 2; }
double twice_half_result(const peers::extents &e) { return 2 * half_result(e); }

// clang-format off
constexpr peers::routine table[] = {
    // name      symbols                                   result               matrix           passes  sums  arguments
    {"dot",    {"sdot", "ddot", "cdotu", "zdotu"},         returned::element,   storage::none,     2, true,  {n, x, one, y, one}},
    {"dotc",   {nullptr, nullptr, "cdotc", "zdotc"},       returned::element,   storage::none,     2, true,  {n, x, one, y, one}},
    {"axpy",   {"saxpy", "daxpy", "caxpy", "zaxpy"},       returned::nothing,   storage::none,     3, false, {n, small, x, one, y, one}},
    {"scal",   {"sscal", "dscal", "cscal", "zscal"},       returned::nothing,   storage::none,     2, false, {n, turn, x, one}},
    {"copy",   {"scopy", "dcopy", "ccopy", "zcopy"},       returned::nothing,   storage::none,     2, false, {n, x, one, y, one}},
    {"swap",   {"sswap", "dswap", "cswap", "zswap"},       returned::nothing,   storage::none,     4, false, {n, x, one, y, one}},
    {"nrm2",   {"snrm2", "dnrm2", "scnrm2", "dznrm2"},     returned::magnitude, storage::none,     1, true,  {n, x, one}},
    {"asum",   {"sasum", "dasum", "scasum", "dzasum"},     returned::magnitude, storage::none,     1, true,  {n, x, one}},
    {"iamax",  {"isamax", "idamax", "icamax", "izamax"},   returned::index,     storage::none,     1, false, {n, x, one}},
    {"rot",    {"srot", "drot", "csrot", "zdrot"},         returned::nothing,   storage::none,     4, false, {n, x, one, y, one, cosine, sine}},
    {"gemv_n", {"sgemv", "dgemv", "cgemv", "zgemv"},       returned::nothing,   storage::full,     1, true,  {no_transpose, n, n, alpha, a, lda, x, one, unity, y, one}},
    {"gemv_t", {"sgemv", "dgemv", "cgemv", "zgemv"},       returned::nothing,   storage::full,     1, true,  {transpose, n, n, alpha, a, lda, x, one, unity, y, one}},
    {"ger",    {"sger", "dger", "cgeru", "zgeru"},         returned::nothing,   storage::full,     2, false, {n, n, small, x, one, y, one, a, lda}},
    {"symv",   {"ssymv", "dsymv", "chemv", "zhemv"},       returned::nothing,   storage::triangle, 1, true,  {uplo, n, alpha, a, lda, x, one, unity, y, one}},
    {"trmv",   {"strmv", "dtrmv", "ctrmv", "ztrmv"},       returned::nothing,   storage::triangle, 1, true,  {uplo, trans, diag, n, a, lda, x, one}},
    {"trsv",   {"strsv", "dtrsv", "ctrsv", "ztrsv"},       returned::nothing,   storage::triangle, 1, true,  {uplo, trans, diag, n, a, lda, x, one}},
    {"syr",    {"ssyr", "dsyr", "cher", "zher"},           returned::nothing,   storage::triangle, 2, false, {uplo, n, small, x, one, a, lda}},
    {"gbmv",   {"sgbmv", "dgbmv", "cgbmv", "zgbmv"},       returned::nothing,   storage::band,     1, true,  {trans, n, n, band, band, alpha, a, ldb, x, one, unity, y, one}},
    {"tpsv",   {"stpsv", "dtpsv", "ctpsv", "ztpsv"},       returned::nothing,   storage::packed,   1, true,  {uplo, trans, diag, n, a, x, one}},
    // A, B and C are a, x and y; --form says which triangle, unless the name does.
    {"gemm_nn",   {"sgemm", "dgemm", "cgemm", "zgemm"},      returned::nothing,   storage::matrices, 0, true,  {no_transpose, no_transpose, m, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"mk", "kn", "mn"}, general},
    {"gemm_tn",   {"sgemm", "dgemm", "cgemm", "zgemm"},      returned::nothing,   storage::matrices, 0, true,  {transpose, no_transpose, m, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"km", "kn", "mn"}, general},
    {"gemm_nt",   {"sgemm", "dgemm", "cgemm", "zgemm"},      returned::nothing,   storage::matrices, 0, true,  {no_transpose, transpose, m, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"mk", "nk", "mn"}, general, true},
    {"gemm_tt",   {"sgemm", "dgemm", "cgemm", "zgemm"},      returned::nothing,   storage::matrices, 0, true,  {transpose, transpose, m, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"km", "nk", "mn"}, general, true},
    {"gemmt",     {"sgemmt", "dgemmt", "cgemmt", "zgemmt"},  returned::nothing,   storage::matrices, 0, true,  {uplo, no_transpose, no_transpose, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"nk", "kn", "nn"}, half_result},
    {"symm_l",    {"ssymm", "dsymm", "csymm", "zsymm"},      returned::nothing,   storage::matrices, 0, true,  {left, uplo, m, n, alpha, a, lda, x, ldx, beta, y, ldy}, {"mm", "mn", "mn"}, left_square},
    {"symm_r",    {"ssymm", "dsymm", "csymm", "zsymm"},      returned::nothing,   storage::matrices, 0, true,  {right, uplo, m, n, alpha, a, lda, x, ldx, beta, y, ldy}, {"nn", "mn", "mn"}, right_square, true},
    {"hemm_l",    {nullptr, nullptr, "chemm", "zhemm"},      returned::nothing,   storage::matrices, 0, true,  {left, uplo, m, n, alpha, a, lda, x, ldx, beta, y, ldy}, {"mm", "mn", "mn"}, left_square},
    {"hemm_r",    {nullptr, nullptr, "chemm", "zhemm"},      returned::nothing,   storage::matrices, 0, true,  {right, uplo, m, n, alpha, a, lda, x, ldx, beta, y, ldy}, {"nn", "mn", "mn"}, right_square, true},
    {"syrk_n",    {"ssyrk", "dsyrk", "csyrk", "zsyrk"},      returned::nothing,   storage::matrices, 0, true,  {uplo, no_transpose, n, k, alpha, a, lda, beta, y, ldy}, {"nk", nullptr, "nn"}, half_result},
    {"syrk_t",    {"ssyrk", "dsyrk", "csyrk", "zsyrk"},      returned::nothing,   storage::matrices, 0, true,  {uplo, transpose, n, k, alpha, a, lda, beta, y, ldy}, {"kn", nullptr, "nn"}, half_result, true},
    {"herk",      {nullptr, nullptr, "cherk", "zherk"},      returned::nothing,   storage::matrices, 0, true,  {uplo, no_transpose, n, k, alpha, a, lda, beta, y, ldy}, {"nk", nullptr, "nn"}, half_result},
    {"syr2k_n",   {"ssyr2k", "dsyr2k", "csyr2k", "zsyr2k"},  returned::nothing,   storage::matrices, 0, true,  {uplo, no_transpose, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"nk", "nk", "nn"}, twice_half_result},
    {"syr2k_t",   {"ssyr2k", "dsyr2k", "csyr2k", "zsyr2k"},  returned::nothing,   storage::matrices, 0, true,  {uplo, transpose, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"kn", "kn", "nn"}, twice_half_result, true},
    {"her2k",     {nullptr, nullptr, "cher2k", "zher2k"},    returned::nothing,   storage::matrices, 0, true,  {uplo, no_transpose, n, k, alpha, a, lda, x, ldx, beta, y, ldy}, {"nk", "nk", "nn"}, twice_half_result},
    {"trmm_lln",  {"strmm", "dtrmm", "ctrmm", "ztrmm"},      returned::nothing,   storage::matrices, 0, true,  {left, lower, no_transpose, diag, m, n, turn, a, lda, x, ldx}, {"mm", "mn", nullptr}, left_triangle},
    {"trmm_lut",  {"strmm", "dtrmm", "ctrmm", "ztrmm"},      returned::nothing,   storage::matrices, 0, true,  {left, upper, transpose, diag, m, n, turn, a, lda, x, ldx}, {"mm", "mn", nullptr}, left_triangle},
    {"trmm_rln",  {"strmm", "dtrmm", "ctrmm", "ztrmm"},      returned::nothing,   storage::matrices, 0, true,  {right, lower, no_transpose, diag, m, n, turn, a, lda, x, ldx}, {"nn", "mn", nullptr}, right_triangle},
    {"trmm_rut",  {"strmm", "dtrmm", "ctrmm", "ztrmm"},      returned::nothing,   storage::matrices, 0, true,  {right, upper, transpose, diag, m, n, turn, a, lda, x, ldx}, {"nn", "mn", nullptr}, right_triangle},
    {"trsm_lln",  {"strsm", "dtrsm", "ctrsm", "ztrsm"},      returned::nothing,   storage::matrices, 0, true,  {left, lower, no_transpose, diag, m, n, turn, a, lda, x, ldx}, {"mm", "mn", nullptr}, left_triangle},
    {"trsm_lut",  {"strsm", "dtrsm", "ctrsm", "ztrsm"},      returned::nothing,   storage::matrices, 0, true,  {left, upper, transpose, diag, m, n, turn, a, lda, x, ldx}, {"mm", "mn", nullptr}, left_triangle},
    {"trsm_rln",  {"strsm", "dtrsm", "ctrsm", "ztrsm"},      returned::nothing,   storage::matrices, 0, true,  {right, lower, no_transpose, diag, m, n, turn, a, lda, x, ldx}, {"nn", "mn", nullptr}, right_triangle},
    {"trsm_rut",  {"strsm", "dtrsm", "ctrsm", "ztrsm"},      returned::nothing,   storage::matrices, 0, true,  {right, upper, transpose, diag, m, n, turn, a, lda, x, ldx}, {"nn", "mn", nullptr}, right_triangle},
};
// clang-format on

} // namespace

bool peers::routine::has(arg argument) const {
    return std::find(std::begin(arguments), std::end(arguments), argument) != std::end(arguments);
}

size_t peers::routine::argument_count() const {
    return size_t(std::find(std::begin(arguments), std::end(arguments), arg::end) - arguments);
}

std::span<const peers::routine> peers::routines() { return table; }

int peers::routine::level() const {
    return matrix == storage::none ? 1 : matrix == storage::matrices ? 3 : 2;
}

long peers::routine::rows(arg operand, const extents &size) const {
    if (level() < 3)
        return size.n;
    const char *const letters = stored[size_t(operand) - size_t(a)];
    return letters ? extent(size, letters[0]) : 1;
}

size_t peers::routine::elements(arg operand, const extents &size) const {
    const size_t n = size_t(size.n);
    if (level() == 3) {
        const char *const letters = stored[size_t(operand) - size_t(a)];
        return letters ? size_t(extent(size, letters[0]) * extent(size, letters[1])) : 0;
    }
    if (operand != a)
        return n;
    const size_t sizes[] = {0, n * n, n * n, n * (n + 1) / 2,
                            n * (2 * std::min(n / 4, size_t(16)) + 1)};
    return sizes[size_t(matrix)];
}

double peers::routine::terms(const extents &size) const {
    if (level() < 3)
        return sums ? double(size.n) : 1;
    return operations(size) / double(elements(stored[2] ? y : x, size));
}

double peers::routine::flops(size_t type, const extents &size) const {
    return operations(size) * (type < 2 ? 1 : 4);
}

std::string peers::extents::text() const {
    const std::string order = std::to_string(n);
    return m == n && n == k ? order : std::to_string(m) + "x" + order + "x" + std::to_string(k);
}

double peers::traffic(const routine &r, const extents &size) {
    const double n = double(size.n);
    const double read_or_written = r.matrix == storage::none       ? n
                                   : r.matrix == storage::triangle ? n * (n + 1) / 2
                                                                   : double(r.elements(a, size));
    return r.passes * read_or_written;
}

std::string peers::case_name(const routine &r, size_t type) {
    const std::string symbol = r.symbols[type], name = r.name;
    const size_t mark = name.find('_');
    return mark == std::string::npos ? symbol : symbol + name.substr(mark);
}
