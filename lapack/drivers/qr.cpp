// qr.cpp - QR and LQ by panels.
#include "lapack/drivers/qr.hpp"

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/householder.hpp"
#include "lapack/drivers/look_ahead.hpp"
#include "lapack/drivers/qr_panel.hpp"
#include "lapack/drivers/reflections.hpp"
#include "lapack/drivers/workspace.hpp"
#include "serv/scratch.hpp"

namespace vox::lapack {
namespace {

// Up to so many columns (rows of an LQ), one after the other is best. Complex numbers keep the
// arithmetic busier, so it can wait longer for more of them.
template <class T>
constexpr index_t unblocked = blocking_of(algorithm::qr).crossover *(is_complex<T> ? 2 : 1);

// The factors R and T of a panel, which are small, and, as long as its columns, what makes an update
// with its V two products.
template <class T>
struct panel_factors {
    T *r, *t, *y, *v;
};

template <class T>
void put_r(index_t width, const T *r, index_t nb, T *a, index_t lda) {
    for (index_t j = 0; j < width; ++j)
        for (index_t i = 0; i <= j; ++i)
            a[i + j * lda] = r[i + j * nb];
}

// Panels of columns: C := C - V (T^H V^H) C. V is in A until the update has been made.
template <class T>
struct qr_steps {
    index_t m, n;
    T *a;
    index_t lda;
    T *tau;
    index_t nb;
    panel_factors<T> slots[2];

    index_t width(index_t j) const { return least(nb, least(m, n) - j); }
    T *panel(index_t j) const { return a + j + j * lda; }

    void factor(index_t j, int slot) const {
        const panel_factors<T> &f = slots[slot];
        const index_t k = width(j);
        factor_panel(m - j, k, panel(j), lda, f.r, nb, tau + j, f.t, nb, f.y);
        if (j + k == n)
            return;
        copy_adjoint(m - j, k, panel(j), lda, f.y, k);
        blas::trmm('L', 'U', 'C', 'N', k, m - j, one<T>, f.t, nb, f.y, k);
    }
    void update(index_t j, int slot, index_t first, index_t count, T *w) const {
        const index_t k = width(j);
        T *const c = a + j + first * lda;
        blas::gemm('N', 'N', k, count, m - j, one<T>, slots[slot].y, k, c, lda, T{}, w, k);
        blas::gemm('N', 'N', m - j, count, k, -one<T>, panel(j), lda, w, k, one<T>, c, lda);
    }
    void finish(index_t j, int slot) const { put_r(width(j), slots[slot].r, nb, panel(j), lda); }
};

// Panels of rows, as columns of a copy: the reflectors of A^H = Q R are those of A = R^H Q^H, and
// C := C - C (V T) V^H.
template <class T>
struct lq_steps {
    index_t m, n;
    T *a;
    index_t lda;
    T *tau;
    index_t nb, ldv;
    panel_factors<T> slots[2];

    index_t width(index_t i) const { return least(nb, least(m, n) - i); }
    T *panel(index_t i) const { return a + i + i * lda; }

    void factor(index_t i, int slot) const {
        const panel_factors<T> &f = slots[slot];
        const index_t k = width(i);
        copy_adjoint(k, n - i, panel(i), lda, f.v, ldv);
        factor_panel(n - i, k, f.v, ldv, f.r, nb, tau + i, f.t, nb, f.y);
        if (i + k == m)
            return;
        for (index_t j = 0; j < k; ++j)
            blas::copy(n - i, f.v + j * ldv, 1, f.y + j * ldv, 1);
        blas::trmm('R', 'U', 'N', 'N', n - i, k, one<T>, f.t, nb, f.y, ldv);
    }
    void update(index_t i, int slot, index_t first, index_t count, T *w) const {
        const panel_factors<T> &f = slots[slot];
        const index_t k = width(i);
        T *const c = a + first + i * lda;
        blas::gemm('N', 'N', count, k, n - i, one<T>, c, lda, f.y, ldv, T{}, w, count);
        blas::gemm('N', 'C', count, n - i, k, -one<T>, w, count, f.v, ldv, one<T>, c, lda);
    }
    void finish(index_t i, int slot) const {
        const panel_factors<T> &f = slots[slot];
        put_r(width(i), f.r, nb, f.v, ldv);
        copy_adjoint(n - i, width(i), f.v, ldv, panel(i), lda);
    }
};

template <class T>
bool qr_by_panels(index_t m, index_t n, T *a, index_t lda, T *tau) {
    const index_t nb = block_size<T>(algorithm::qr, m, n), each = nb * (2 * nb + m);
    const look_ahead<T> plan(m, n, nb);
    const scratch<T> memory(2 * each + plan.work());
    if (memory.empty())
        return false;
    qr_steps<T> steps = {m, n, a, lda, tau, nb, {}};
    for (int s = 0; s < 2; ++s) {
        T *const r = memory.data() + s * each;
        steps.slots[s] = {r, r + nb * nb, r + 2 * nb * nb, nullptr};
    }
    plan.run(steps, memory.data() + 2 * each);
    return true;
}

template <class T>
bool lq_by_panels(index_t m, index_t n, T *a, index_t lda, T *tau) {
    const index_t nb = block_size<T>(algorithm::qr, m, n), ldv = padded<T>(n);
    const index_t each = 2 * nb * (nb + ldv);
    const look_ahead<T> plan(n, m, nb);
    const scratch<T> memory(2 * each + plan.work());
    if (memory.empty())
        return false;
    lq_steps<T> steps = {m, n, a, lda, tau, nb, ldv, {}};
    for (int s = 0; s < 2; ++s) {
        T *const v = memory.data() + s * each, *const y = v + nb * ldv, *const r = y + nb * ldv;
        steps.slots[s] = {r, r + nb * nb, y, v};
    }
    plan.run(steps, memory.data() + 2 * each);
    return true;
}

// So much memory is spent on the adjoint of a matrix, whose columns are faster than rows.
constexpr index_t copy_bytes = 32 << 20;

template <class T>
bool lq_of_copy(index_t m, index_t n, T *a, index_t lda, T *tau, T *work) {
    const index_t ld = padded<T>(n);
    if (ld > copy_bytes / index_t(sizeof(T)) / m)
        return false;
    const scratch<T> copy(ld * m);
    if (copy.empty())
        return false;
    copy_adjoint(m, n, a, lda, copy.data(), ld);
    geqrf(n, m, copy.data(), ld, tau, work, m);
    copy_adjoint(n, m, copy.data(), ld, a, lda);
    return true;
}

} // namespace

template <class T>
index_t geqr2(index_t m, index_t n, T *a, index_t lda, T *tau, T *work) {
    factor_columns(m, n, a, lda, tau, work);
    return 0;
}

template <class T>
index_t gelq2(index_t m, index_t n, T *a, index_t lda, T *tau, T *work) {
    for (index_t i = 0; i < least(m, n); ++i) {
        T *const row = a + i + i * lda;
        const auto conjugate = [&] {
            for (index_t j = 0; is_complex<T> && j < n - i; ++j)
                row[j * lda] = conj_if(true, row[j * lda]);
        };
        conjugate();
        larfg(n - i, row, row + (n - i > 1 ? lda : 0), lda, tau + i);
        conjugate();
        if (i + 1 < m)
            stored_reflectors(true, false, n - i, 1, row, lda, tau + i, 1)
                .apply_right(false, m - i - 1, row + 1, lda, work);
    }
    return 0;
}

template <class T>
index_t geqrf(index_t m, index_t n, T *a, index_t lda, T *tau, T *work, index_t lwork) {
    const index_t k = least(m, n);
    if (lwork != -1 && k > 0 && (k <= unblocked<T> || !qr_by_panels(m, n, a, lda, tau)))
        geqr2(m, n, a, lda, tau, work);
    *work = best_work<T>(algorithm::qr, n);
    return 0;
}

template <class T>
index_t gelqf(index_t m, index_t n, T *a, index_t lda, T *tau, T *work, index_t lwork) {
    if (lwork != -1 && least(m, n) > 0 && !lq_of_copy(m, n, a, lda, tau, work) &&
        !lq_by_panels(m, n, a, lda, tau))
        gelq2(m, n, a, lda, tau, work);
    *work = best_work<T>(algorithm::qr, m);
    return 0;
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t geqr2<T>(index_t, index_t, T *, index_t, T *, T *);                           \
    template index_t gelq2<T>(index_t, index_t, T *, index_t, T *, T *);                           \
    template index_t geqrf<T>(index_t, index_t, T *, index_t, T *, T *, index_t);                  \
    template index_t gelqf<T>(index_t, index_t, T *, index_t, T *, T *, index_t);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
