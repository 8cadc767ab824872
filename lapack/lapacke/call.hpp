// call.hpp - a call of a C form: layouts, the NaN check, workspace, all as a visitor of the routine's
// description, so that no routine has code of its own for them.
//
// The visitor goes through the elements once for each step that a form needs. It numbers the
// parameters as the C form has them, the layout being number 1.
#pragma once

#include "lapack/entry/check.hpp"
#include "lapack/lapacke/helpers.hpp"
#include "vox/lapacke.h"

namespace vox::lapack::lapacke {

using vox::lapacke::column_major;
using vox::lapacke::no_transpose_memory;
using vox::lapacke::no_work_memory;
using vox::lapacke::row_major;

// What is known about the elements of a matrix that a call does not read.
enum class stored : char { all, triangle, trapezoid, reflectors };

// A matrix of a call: the form's own pointer and leading dimension, which a copy takes over.
template <class T>
struct matrix {
    T *&data;
    vox_int &ld;
    index_t rows, cols;
    bool read, changed; // read: NaN is looked for
    stored kind = stored::all;
    char first_option = 0, second_option = 0; // uplo and diag, or direct and storev
};

template <class T>
class visitor {
  public:
    enum class step {
        find_nan,       // the number of the first input that has one
        query,          // workspace of queried size: ask for it
        provide,        // workspace: all that there is to be
        give_workspace, // ... and is not needed any more
        check_rows,     // the number of the first leading dimension that is too small for rows
        set_columns,    // leading dimensions as those of copies
        copy_in,        // row-major matrices to their copies
        copy_out,       // ... and back
    };

    explicit visitor(int layout) : layout_(layout) {}
    template <class Describe>
    vox_int run(step next, const Describe &describe) {
        step_ = next;
        position_ = layout_ ? 1 : 0;
        matrices_ = blocks_ = 0;
        result_ = 0;
        describe(*this);
        return result_;
    }
    bool has_query() const { return has_query_; }
    bool is_query() const { return is_query_; }

    template <class... X>
    void option(char &, X...) {
        ++position_;
    }
    void letter(char &) { ++position_; }
    void size(vox_int &) { ++position_; }
    void size_within(vox_int &, index_t) { ++position_; }
    void size_from(vox_int &, index_t) { ++position_; }
    void integer_in(vox_int &) { ++position_; }
    void require(bool, int) {}
    void scalar_in(const T &x) { vector(&x, 1, 1); }
    template <class R>
    void real_in(const R &x) {
        ++position_;
        if (step_ == step::find_nan && x != x)
            found(-position_);
    }
    void norm_in(const real_of<T> &x) { real_in(x); }
    void real_out(real_of<T> *&) { ++position_; }
    void real_inout(real_of<T> *&x) { real_in(*x); }

    template <class A>
    void in(A *&a, vox_int &ld, index_t rows, index_t cols) {
        take({own(a), ld, rows, cols, true, false});
    }
    void inout(T *&a, vox_int &ld, index_t rows, index_t cols) {
        take({a, ld, rows, cols, true, true});
    }
    void kept(T *&a, vox_int &ld, index_t rows, index_t cols) {
        take({a, ld, rows, cols, false, true});
    }
    template <class A>
    void in_triangle(A *&a, vox_int &ld, char uplo, char diag, index_t n) {
        take({own(a), ld, n, n, true, false, stored::triangle, uplo, diag});
    }
    void inout_triangle(T *&a, vox_int &ld, char uplo, char diag, index_t n) {
        take({a, ld, n, n, true, true, stored::triangle, uplo, diag});
    }
    template <class A>
    void in_trapezoid(A *&a, vox_int &ld, char uplo, char diag, index_t m, index_t n) {
        take({own(a), ld, m, n, true, false, stored::trapezoid, uplo, diag});
    }
    template <class A>
    void in_reflectors(A *&v, vox_int &ld, char direct, char storev, index_t rows, index_t cols) {
        take({own(v), ld, rows, cols, true, false, stored::reflectors, direct, storev});
    }
    void vector_in(const T *x, index_t n, index_t incx = 1) { vector(x, n, incx); }
    void vector_inout(const T *x, index_t n, index_t incx = 1) { vector(x, n, incx); }
    template <class... X>
    void vector_out(X...) {
        ++position_;
    }
    void pivots_in(const vox_int *, index_t) { ++position_; }
    void pivots_out(const vox_int *, index_t) { ++position_; }
    void pivots_inout(const vox_int *, index_t) { ++position_; }

    void queried(T *&work, vox_int &length, index_t least);
    void space(T *&work, index_t n) { block(work, n); }
    void real_space(real_of<T> *&work, index_t n) { block(work, n); }
    void integer_space(vox_int *&work, index_t n) { block(work, n); }
    void space_rows(T *&work, vox_int &ld, index_t rows, index_t cols) {
        if (step_ == step::provide)
            ld = vox_int(most(1, rows));
        block(work, most(1, rows) * most(1, cols));
        ++position_;
    }

  private:
    template <class A>
    static T *&own(A *&a) {
        return const_cast<T *&>(a);
    }
    void found(vox_int result) {
        if (result_ == 0)
            result_ = result;
    }
    void take(const matrix<T> &m);
    bool has_nan(const matrix<T> &m) const;
    void transpose(int from, const matrix<T> &m, const T *in, vox_int ldin, T *out,
                   vox_int ldout) const;
    void vector(const T *x, index_t n, index_t incx);
    template <class W>
    void block(W *&work, index_t n);

    static constexpr int most_matrices = 3;
    struct copy {
        T *original, *data;
        vox_int ld;
    };

    int layout_;
    step step_ = step::find_nan;
    vox_int position_ = 1, result_ = 0;
    copy copies_[most_matrices];
    int matrices_ = 0, blocks_ = 0;
    T best_length_ = make<T>(0);
    bool has_query_ = false, is_query_ = false, no_copies_ = false;
};

// A parameter number in a Fortran form's info is one less than in the C form.
inline vox_int shifted(vox_int info) { return info < 0 && info > no_work_memory ? info - 1 : info; }

// The form with workspace: invoke() calls the Fortran form on what the parameters then are and
// returns its info.
template <class T, class Describe, class Invoke>
vox_int work_call(const char *name, int layout, const Describe &describe, const Invoke &invoke) {
    using step = typename visitor<T>::step;
    if (layout == column_major)
        return shifted(invoke());
    if (layout != row_major) {
        LAPACKE_xerbla(name, -1);
        return -1;
    }
    visitor<T> call(layout);
    if (const vox_int bad = call.run(step::check_rows, describe)) {
        LAPACKE_xerbla(name, bad);
        return bad;
    }
    if (call.is_query()) {
        call.run(step::set_columns, describe);
        return shifted(invoke());
    }
    vox_int info = call.run(step::copy_in, describe);
    if (info == 0)
        info = shifted(invoke());
    else
        LAPACKE_xerbla(name, info);
    call.run(step::copy_out, describe);
    return info;
}

// The form without: invoke() calls the one with.
template <class T, class Describe, class Invoke>
vox_int high_call(const char *name, int layout, const Describe &describe, const Invoke &invoke) {
    using step = typename visitor<T>::step;
    if (layout != row_major && layout != column_major) {
        LAPACKE_xerbla(name, -1);
        return -1;
    }
    visitor<T> call(layout);
    if (LAPACKE_get_nancheck())
        if (const vox_int bad = call.run(step::find_nan, describe))
            return bad;
    call.run(step::query, describe);
    if (call.has_query())
        if (const vox_int info = invoke())
            return info;
    vox_int info = call.run(step::provide, describe);
    if (info == 0)
        info = invoke();
    else
        LAPACKE_xerbla(name, info);
    call.run(step::give_workspace, describe);
    return info;
}

// The number of the first argument that is NaN in a call without a layout, negative; or 0.
template <class T, class Describe>
vox_int first_nan(const Describe &describe) {
    return LAPACKE_get_nancheck() ? visitor<T>(0).run(visitor<T>::step::find_nan, describe) : 0;
}

// Forms that return a value instead return an info in its place.
template <class T, class Result, class Describe, class Invoke>
Result work_form(const char *name, int layout, const Describe &describe, const Invoke &invoke) {
    if constexpr (std::is_same_v<Result, vox_int>) {
        return work_call<T>(name, layout, describe, invoke);
    } else {
        Result value{};
        const vox_int info = work_call<T>(name, layout, describe, [&] {
            value = invoke();
            return vox_int(0);
        });
        return info ? Result(info) : value;
    }
}
template <class T, class Result, class Describe, class Invoke>
Result high_form(const char *name, int layout, const Describe &describe, const Invoke &invoke) {
    if constexpr (std::is_same_v<Result, vox_int>) {
        return high_call<T>(name, layout, describe, invoke);
    } else {
        Result value{};
        const vox_int info = high_call<T>(name, layout, describe, [&] {
            value = invoke();
            return vox_int(0);
        });
        return info ? Result(info) : value;
    }
}

} // namespace vox::lapack::lapacke
