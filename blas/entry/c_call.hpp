// c_call.hpp - a call through the C interface: layout and options become those of the Fortran call,
// wrong arguments are reported with their numbers, the layout being number 1.
//
// A row-major matrix is the transpose of a column-major one: its operation is transposed, its other
// triangle is stored. Where that asks for a conjugate which the Fortran routine does not offer (that
// of an untransposed matrix, operation 'R', is one), the driver is called in its place. The products
// of level 3 are never in that need: the transpose of a product has its factors, as they are stored,
// in the other order.
#pragma once

#include "serv/entry.hpp"
#include "serv/scalar.hpp"
#include "vox/cblas.h"
#include "vox/service.h"

namespace vox {

class c_call {
  public:
    // Whether the call can go on with its checks: known() after construction, good() at their end.
    c_call(const char *routine, CBLAS_LAYOUT layout)
        : routine_(routine), row_major_(layout == CblasRowMajor) {
        known_ = row_major_ || layout == CblasColMajor;
        check(!known_, 1);
    }
    bool known() const { return known_; }
    bool row_major() const { return row_major_; }

    // Options at parameter number `position`; a wrong one is reported, and the checks go on.
    template <class T>
    char trans(CBLAS_TRANSPOSE value, int position) {
        check(value < CblasNoTrans || value > CblasConjTrans, position);
        if (row_major_)
            return value == CblasNoTrans ? 'T' : value == CblasTrans || !is_complex<T> ? 'N' : 'R';
        return value == CblasNoTrans ? 'N' : value == CblasTrans ? 'T' : 'C';
    }
    // The operation on a factor of a product whose factors the caller exchanges.
    char factor_trans(CBLAS_TRANSPOSE value, int position) {
        check(value < CblasNoTrans || value > CblasConjTrans, position);
        return value == CblasNoTrans ? 'N' : value == CblasTrans ? 'T' : 'C';
    }
    // The same, or CblasPacked; and which factor a buffer is for.
    char packed_trans(vox_int value, int position) {
        return value == CblasPacked ? 'P' : factor_trans(CBLAS_TRANSPOSE(value), position);
    }
    char identifier(vox_int value, int position) {
        check(value != CblasAMatrix && value != CblasBMatrix, position);
        return (value == CblasAMatrix) != row_major_ ? 'A' : 'B';
    }
    // Which elements the offset of a product has.
    char offset(CBLAS_OFFSET value, int position) {
        check(value < CblasRowOffset || value > CblasFixOffset, position);
        return value == CblasFixOffset ? 'F' : (value == CblasColOffset) != row_major_ ? 'C' : 'R';
    }
    // Which factor of A A^T, or A A^H, is the transposed one.
    template <class T>
    char update_trans(CBLAS_TRANSPOSE value, bool hermitian, int position) {
        const bool transposed = value == (hermitian ? CblasConjTrans : CblasTrans) ||
                                (value == CblasConjTrans && !is_complex<T>);
        check(value != CblasNoTrans && !transposed, position);
        return transposed == row_major_ ? 'N' : hermitian ? 'C' : 'T';
    }
    char side(CBLAS_SIDE value, int position) {
        check(value != CblasLeft && value != CblasRight, position);
        return (value == CblasLeft) != row_major_ ? 'L' : 'R';
    }
    char uplo(CBLAS_UPLO value, int position) {
        check(value != CblasUpper && value != CblasLower, position);
        return (value == CblasUpper) != row_major_ ? 'U' : 'L';
    }
    char diag(CBLAS_DIAG value, int position) {
        check(value != CblasNonUnit && value != CblasUnit, position);
        return value == CblasUnit ? 'U' : 'N';
    }
    // The remaining arguments: the Fortran number of the first bad one, or 0.
    bool good(int bad) {
        check(bad != 0, bad + 1);
        return good_;
    }

  private:
    void check(bool wrong, int position) {
        if (VOX_UNLIKELY(wrong)) {
            good_ = false;
            cblas_xerbla(routine_, position);
        }
    }

    const char *routine_;
    bool row_major_, known_, good_ = true;
};

// What a C form calls: the Fortran routine by its exported name, or, for what it does not offer, the
// driver behind it, with a verbose line of the same kind.
template <class Fortran, class Driver>
struct c_target {
    const char *logged_name;
    Fortran *fortran;
    Driver beyond;

    template <class... A>
    void operator()(bool offered, A... arguments) const {
        if (offered)
            fortran(arguments...);
        else
            logged(logged_name, beyond, beyond, arguments...);
    }
};
template <class Fortran, class Driver>
c_target(const char *, Fortran *, Driver) -> c_target<Fortran, Driver>;

} // namespace vox
