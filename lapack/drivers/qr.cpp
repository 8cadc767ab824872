// qr.cpp - QR and LQ by panels.
#include "lapack/drivers/qr.hpp"

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/householder.hpp"
#include "lapack/drivers/qr_panel.hpp"
#include "lapack/drivers/reflections.hpp"
#include "lapack/drivers/workspace.hpp"
#include "serv/scratch.hpp"

namespace vox::lapack {
namespace {

constexpr index_t unblocked = blocking_of(algorithm::qr).crossover;

// What a panel needs: R, T, and products with its reflectors.
template <class T>
struct panel_memory {
    index_t nb;
    scratch<T> all;
    panel_memory(index_t m, index_t n, index_t others)
        : nb(block_size(algorithm::qr, m, n)), all(nb * (2 * nb + most(nb, others))) {}
    T *r() const { return all.data(); }
    T *t() const { return r() + nb * nb; }
    T *w() const { return t() + nb * nb; }
};

template <class T>
bool qr_by_panels(index_t m, index_t n, T *a, index_t lda, T *tau) {
    const index_t k = least(m, n);
    const panel_memory<T> memory(m, n, n);
    if (memory.all.empty())
        return false;
    const index_t nb = memory.nb;
    T *const r = memory.r(), *const t = memory.t(), *const w = memory.w();
    for (index_t j = 0; j < k; j += nb) {
        const index_t width = least(nb, k - j);
        T *const panel = a + j + j * lda;
        factor_panel(m - j, width, panel, lda, r, nb, tau + j, t, nb, w);
        if (j + width < n)
            plain_reflectors(m - j, width, panel, lda, t, nb)
                .apply_left(true, n - j - width, panel + width * lda, lda, w);
        for (index_t c = 0; c < width; ++c)
            for (index_t i = 0; i <= c; ++i)
                panel[i + c * lda] = r[i + c * nb];
    }
    return true;
}

// Rows of A, as columns of a copy: the reflectors of A^H = Q R are those of A = R^H Q^H.
template <class T>
bool lq_by_panels(index_t m, index_t n, T *a, index_t lda, T *tau) {
    const index_t k = least(m, n), ld = padded<T>(n);
    const panel_memory<T> memory(m, n, m);
    const scratch<T> copy(ld * memory.nb);
    if (memory.all.empty() || copy.empty())
        return false;
    const index_t nb = memory.nb;
    T *const r = memory.r(), *const t = memory.t(), *const w = memory.w(), *const v = copy.data();
    for (index_t i = 0; i < k; i += nb) {
        const index_t width = least(nb, k - i);
        T *const panel = a + i + i * lda;
        copy_adjoint(width, n - i, panel, lda, v, ld);
        factor_panel(n - i, width, v, ld, r, nb, tau + i, t, nb, w);
        if (i + width < m)
            plain_reflectors(n - i, width, v, ld, t, nb)
                .apply_right(false, m - i - width, panel + width, lda, w);
        for (index_t c = 0; c < width; ++c)
            for (index_t j = 0; j <= c; ++j)
                v[j + c * ld] = r[j + c * nb];
        copy_adjoint(n - i, width, v, ld, panel, lda);
    }
    return true;
}

// A small matrix, by its adjoint.
template <class T>
bool lq_at_once(index_t m, index_t n, T *a, index_t lda, T *tau, T *work) {
    const index_t ld = padded<T>(n);
    const scratch<T> copy(ld * m);
    if (copy.empty())
        return false;
    copy_adjoint(m, n, a, lda, copy.data(), ld);
    factor_columns(n, m, copy.data(), ld, tau, work);
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
    if (lwork != -1 && k > 0 && (k <= unblocked || !qr_by_panels(m, n, a, lda, tau)))
        geqr2(m, n, a, lda, tau, work);
    *work = best_work<T>(algorithm::qr, n);
    return 0;
}

template <class T>
index_t gelqf(index_t m, index_t n, T *a, index_t lda, T *tau, T *work, index_t lwork) {
    const index_t k = least(m, n);
    if (lwork != -1 && k > 0 &&
        !(k <= unblocked ? lq_at_once(m, n, a, lda, tau, work) : lq_by_panels(m, n, a, lda, tau)))
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
