// call.cpp - the steps of a call of a C form.
#include "lapack/lapacke/call.hpp"

#include "vox/service.h"

namespace vox::lapack::lapacke {

namespace {

constexpr size_t alignment = 128;

template <class W>
W *allocate(index_t n) {
    size_t bytes;
    if (__builtin_mul_overflow(size_t(most(1, n)), sizeof(W), &bytes))
        return nullptr;
    return static_cast<W *>(vox_serv_iface_allocate(bytes, alignment));
}

// The elements of V that are not known to be zero or one; rows x cols as stored.
template <class T>
bool reflectors_have_nan(int layout, const matrix<T> &v) {
    const bool forward = is(v.first_option, 'F'), by_columns = is(v.second_option, 'C');
    // Reflector j has its 1 at place j, or at the end of a backward list at place length - k + j.
    const index_t k = by_columns ? v.cols : v.rows, length = by_columns ? v.rows : v.cols;
    const index_t along = by_columns == (layout == column_major) ? 1 : v.ld;
    const index_t across = along == 1 ? v.ld : 1;
    for (index_t j = 0; j < k; ++j) {
        const index_t from = forward ? j + 1 : 0, end = forward ? length : length - k + j;
        if (end > from &&
            vox::lapacke::has_nan(end - from, v.data + j * across + from * along, along))
            return true;
    }
    return false;
}

// The triangle, or what is beside it in the longer direction too.
template <class T>
bool trapezoid_has_nan(int layout, const matrix<T> &a) {
    const bool upper = is(a.first_option, 'U'), unit = is(a.second_option, 'U');
    const index_t down = layout == column_major ? 1 : a.ld;
    const index_t right = layout == column_major ? a.ld : 1;
    for (index_t j = 0; j < a.cols; ++j) {
        const index_t from = upper ? 0 : j + unit;
        const index_t end = upper ? least(a.rows, j + 1 - unit) : a.rows;
        if (end > from && vox::lapacke::has_nan(end - from, a.data + j * right + from * down, down))
            return true;
    }
    return false;
}

} // namespace

template <class T>
bool visitor<T>::has_nan(const matrix<T> &m) const {
    if (!m.data)
        return false;
    switch (m.kind) {
    case stored::all:
        return vox::lapacke::has_nan_ge<T>(layout_, m.rows, m.cols, m.data, m.ld);
    case stored::triangle:
        return vox::lapacke::has_nan_tr<T>(layout_, m.first_option, m.second_option, m.rows, m.data,
                                           m.ld);
    case stored::trapezoid:
        return trapezoid_has_nan(layout_, m);
    case stored::reflectors:
        return reflectors_have_nan(layout_, m);
    }
    return false;
}

template <class T>
void visitor<T>::transpose(int from, const matrix<T> &m, const T *in, vox_int ldin, T *out,
                           vox_int ldout) const {
    if (m.kind == stored::triangle)
        vox::lapacke::transpose_tr<T>(from, m.first_option, m.second_option, m.rows, in, ldin, out,
                                      ldout);
    else
        vox::lapacke::transpose_ge<T>(from, m.rows, m.cols, in, ldin, out, ldout);
}

template <class T>
void visitor<T>::take(const matrix<T> &m) {
    const vox_int number = ++position_;
    ++position_; // its leading dimension
    const int place = matrices_++;
    const index_t ld_copy = most(1, m.rows);
    switch (step_) {
    case step::find_nan:
        if (m.read && result_ == 0 && has_nan(m))
            found(-number);
        break;
    case step::check_rows:
        if (m.ld < m.cols)
            found(-number - 1);
        break;
    case step::set_columns:
        m.ld = vox_int(ld_copy);
        break;
    case step::copy_in: {
        copies_[place] = {m.data, nullptr, m.ld};
        if (result_)
            break;
        T *const data = allocate<T>(ld_copy * most(1, m.cols));
        if (!data) {
            no_copies_ = true;
            found(no_transpose_memory);
            break;
        }
        copies_[place].data = data;
        transpose(row_major, m, m.data, m.ld, data, vox_int(ld_copy));
        m.data = data;
        m.ld = vox_int(ld_copy);
        break;
    }
    case step::copy_out: {
        const copy &c = copies_[place];
        if (!c.data)
            break;
        if (m.changed && !no_copies_)
            transpose(column_major, m, c.data, m.ld, c.original, c.ld);
        vox_serv_iface_deallocate(c.data);
        break;
    }
    default:
        break;
    }
}

template <class T>
void visitor<T>::vector(const T *x, index_t n, index_t incx) {
    ++position_;
    if (step_ == step::find_nan && result_ == 0 && vox::lapacke::has_nan<T>(n, x, incx))
        found(-position_);
}

template <class T>
template <class W>
void visitor<T>::block(W *&work, index_t n) {
    ++position_;
    if (step_ == step::provide) {
        if (result_)
            return;
        work = allocate<W>(n);
        if (!work)
            found(no_work_memory);
    } else if (step_ == step::give_workspace) {
        vox_serv_iface_deallocate(work);
    }
}

template <class T>
void visitor<T>::queried(T *&work, vox_int &length, index_t) {
    switch (step_) {
    case step::query:
        has_query_ = true;
        work = &best_length_;
        length = -1;
        break;
    case step::provide:
        work = nullptr;
        length = vox_int(real(best_length_));
        break;
    case step::check_rows:
        is_query_ = length == -1;
        break;
    default:
        break;
    }
    block(work, length);
    ++position_;
}

template class visitor<float>;
template class visitor<double>;
template class visitor<vox_complex_float>;
template class visitor<vox_complex_double>;
template void visitor<float>::block(float *&, index_t);
template void visitor<double>::block(double *&, index_t);
template void visitor<vox_complex_float>::block(vox_complex_float *&, index_t);
template void visitor<vox_complex_double>::block(vox_complex_double *&, index_t);
template void visitor<vox_complex_float>::block(float *&, index_t);
template void visitor<vox_complex_double>::block(double *&, index_t);
template void visitor<float>::block(vox_int *&, index_t);
template void visitor<double>::block(vox_int *&, index_t);
template void visitor<vox_complex_float>::block(vox_int *&, index_t);
template void visitor<vox_complex_double>::block(vox_int *&, index_t);

} // namespace vox::lapack::lapacke
