// routines.cpp - see routines.hpp.
#include "bench/peers/routines.hpp"

#include <algorithm>
#include <iterator>

namespace {

using enum peers::arg;
using peers::returned;
using peers::storage;

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

double peers::traffic(const routine &r, long length) {
    const double order = double(length);
    const double elements[] = {order, order * order, order * (order + 1) / 2,
                               order * (order + 1) / 2,
                               order * double(2 * std::min(length / 4, 16L) + 1)};
    return r.passes * elements[size_t(r.matrix)];
}
