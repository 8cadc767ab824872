/* trans.h - matrix copy and transposition, out of place and in place, and the sum of two matrices. */
#ifndef VOX_TRANS_H
#define VOX_TRANS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What all of them share.
 *
 * ordering: 'R', rows lie one after another, or 'C', columns do. trans: 'N' nothing, 'T' transpose, 'C'
 * conjugate transpose, 'R' conjugate without transposition; for real types 'C' is 'T' and 'R' is 'N'.
 * Either case. Leading dimensions count elements from one row (column) to the next, at least the length of
 * one.
 *
 * Nothing is checked and nothing reported. A letter that is none of these, or a size of 0 or less, makes a
 * call do nothing; arrays may be null then. Operands and result must not overlap unless it says so.
 *
 * A factor of 1 copies bit by bit, payloads of NaN and signs of zeros included, and a conjugate then
 * changes a sign and no more. Any other real factor, 0 too, is one multiplication with one rounding; a complex one is the textbook product, with
 * an error of at most sqrt(2) gamma(2) |alpha| |x|, gamma(n) = n u / (1 - n u), u = eps / 2. Results do
 * not depend on the number of threads. More than 16 rows, more than 16 columns and more than 32,768
 * bytes run on the threads of the general domain (VOX_DOMAIN_ALL).
 *
 * Each in three Fortran spellings, with 32-bit integers and everything by address, and in one for C
 * (VOX_Domatcopy), with 64-bit integers and everything by value. */

/* ?omatcopy: B := alpha op(A).
 * A: rows x cols as it is stored; B: of that size, or cols x rows for 'T' and 'C'. */
VOX_FORTRAN(void, vox_somatcopy, VOX_SOMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const float *alpha, const float *a, const vox_int *lda, float *b, const vox_int *ldb));
VOX_FORTRAN(void, vox_domatcopy, VOX_DOMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const double *alpha, const double *a, const vox_int *lda, double *b,
             const vox_int *ldb));
VOX_FORTRAN(void, vox_comatcopy, VOX_COMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_float *alpha, const vox_complex_float *a, const vox_int *lda,
             vox_complex_float *b, const vox_int *ldb));
VOX_FORTRAN(void, vox_zomatcopy, VOX_ZOMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_double *alpha, const vox_complex_double *a, const vox_int *lda,
             vox_complex_double *b, const vox_int *ldb));
VOX_API void VOX_Somatcopy(char ordering, char trans, int64_t rows, int64_t cols, float alpha,
                           const float *a, int64_t lda, float *b, int64_t ldb);
VOX_API void VOX_Domatcopy(char ordering, char trans, int64_t rows, int64_t cols, double alpha,
                           const double *a, int64_t lda, double *b, int64_t ldb);
VOX_API void VOX_Comatcopy(char ordering, char trans, int64_t rows, int64_t cols,
                           vox_complex_float alpha, const vox_complex_float *a, int64_t lda,
                           vox_complex_float *b, int64_t ldb);
VOX_API void VOX_Zomatcopy(char ordering, char trans, int64_t rows, int64_t cols,
                           vox_complex_double alpha, const vox_complex_double *a, int64_t lda,
                           vox_complex_double *b, int64_t ldb);

/* ?omatcopy2: the same where neighbours in a row (with 'C' in a column) are stridea elements apart in A,
 * strideb in B. */
VOX_FORTRAN(void, vox_somatcopy2, VOX_SOMATCOPY2,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const float *alpha, const float *a, const vox_int *lda, const vox_int *stridea,
             float *b, const vox_int *ldb, const vox_int *strideb));
VOX_FORTRAN(void, vox_domatcopy2, VOX_DOMATCOPY2,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const double *alpha, const double *a, const vox_int *lda, const vox_int *stridea,
             double *b, const vox_int *ldb, const vox_int *strideb));
VOX_FORTRAN(void, vox_comatcopy2, VOX_COMATCOPY2,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_float *alpha, const vox_complex_float *a, const vox_int *lda,
             const vox_int *stridea, vox_complex_float *b, const vox_int *ldb,
             const vox_int *strideb));
VOX_FORTRAN(void, vox_zomatcopy2, VOX_ZOMATCOPY2,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_double *alpha, const vox_complex_double *a, const vox_int *lda,
             const vox_int *stridea, vox_complex_double *b, const vox_int *ldb,
             const vox_int *strideb));
VOX_API void VOX_Somatcopy2(char ordering, char trans, int64_t rows, int64_t cols, float alpha,
                            const float *a, int64_t lda, int64_t stridea, float *b, int64_t ldb,
                            int64_t strideb);
VOX_API void VOX_Domatcopy2(char ordering, char trans, int64_t rows, int64_t cols, double alpha,
                            const double *a, int64_t lda, int64_t stridea, double *b, int64_t ldb,
                            int64_t strideb);
VOX_API void VOX_Comatcopy2(char ordering, char trans, int64_t rows, int64_t cols,
                            vox_complex_float alpha, const vox_complex_float *a, int64_t lda,
                            int64_t stridea, vox_complex_float *b, int64_t ldb, int64_t strideb);
VOX_API void VOX_Zomatcopy2(char ordering, char trans, int64_t rows, int64_t cols,
                            vox_complex_double alpha, const vox_complex_double *a, int64_t lda,
                            int64_t stridea, vox_complex_double *b, int64_t ldb, int64_t strideb);

/* ?imatcopy: AB := alpha op(AB), in place: a rows x cols matrix with leading dimension lda becomes one with
 * ldb. Elements of the array that belong to neither are not touched; those that belong only to the operand
 * hold anything afterwards. A leading dimension that is too small makes the call do nothing. Works with
 * 16 KB of stack; with lda != ldb also in up to 1 MB of scratch memory or a bit per element, and without
 * memory more slowly. */
VOX_FORTRAN(void, vox_simatcopy, VOX_SIMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const float *alpha, float *ab, const vox_int *lda, const vox_int *ldb));
VOX_FORTRAN(void, vox_dimatcopy, VOX_DIMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const double *alpha, double *ab, const vox_int *lda, const vox_int *ldb));
VOX_FORTRAN(void, vox_cimatcopy, VOX_CIMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_float *alpha, vox_complex_float *ab, const vox_int *lda,
             const vox_int *ldb));
VOX_FORTRAN(void, vox_zimatcopy, VOX_ZIMATCOPY,
            (const char *ordering, const char *trans, const vox_int *rows, const vox_int *cols,
             const vox_complex_double *alpha, vox_complex_double *ab, const vox_int *lda,
             const vox_int *ldb));
VOX_API void VOX_Simatcopy(char ordering, char trans, int64_t rows, int64_t cols, float alpha,
                           float *ab, int64_t lda, int64_t ldb);
VOX_API void VOX_Dimatcopy(char ordering, char trans, int64_t rows, int64_t cols, double alpha,
                           double *ab, int64_t lda, int64_t ldb);
VOX_API void VOX_Cimatcopy(char ordering, char trans, int64_t rows, int64_t cols,
                           vox_complex_float alpha, vox_complex_float *ab, int64_t lda,
                           int64_t ldb);
VOX_API void VOX_Zimatcopy(char ordering, char trans, int64_t rows, int64_t cols,
                           vox_complex_double alpha, vox_complex_double *ab, int64_t lda,
                           int64_t ldb);

/* ?omatadd: C := alpha op(A) + beta op(B).
 * C: m x n; A and B: of that size, or n x m where they are transposed. C may be A, or B, or both, where that
 * operand is not transposed and has C's leading dimension. An operand whose factor is 0 is not read: then
 * it is ?omatcopy of the other one, or C := 0. Error: gamma(2) (|alpha a| + |beta b|) with real factors,
 * sqrt(2) gamma(3) times that with complex ones; products with a factor of 1 are exact. */
VOX_FORTRAN(void, vox_somatadd, VOX_SOMATADD,
            (const char *ordering, const char *transa, const char *transb, const vox_int *m,
             const vox_int *n, const float *alpha, const float *a, const vox_int *lda,
             const float *beta, const float *b, const vox_int *ldb, float *c, const vox_int *ldc));
VOX_FORTRAN(void, vox_domatadd, VOX_DOMATADD,
            (const char *ordering, const char *transa, const char *transb, const vox_int *m,
             const vox_int *n, const double *alpha, const double *a, const vox_int *lda,
             const double *beta, const double *b, const vox_int *ldb, double *c,
             const vox_int *ldc));
VOX_FORTRAN(void, vox_comatadd, VOX_COMATADD,
            (const char *ordering, const char *transa, const char *transb, const vox_int *m,
             const vox_int *n, const vox_complex_float *alpha, const vox_complex_float *a,
             const vox_int *lda, const vox_complex_float *beta, const vox_complex_float *b,
             const vox_int *ldb, vox_complex_float *c, const vox_int *ldc));
VOX_FORTRAN(void, vox_zomatadd, VOX_ZOMATADD,
            (const char *ordering, const char *transa, const char *transb, const vox_int *m,
             const vox_int *n, const vox_complex_double *alpha, const vox_complex_double *a,
             const vox_int *lda, const vox_complex_double *beta, const vox_complex_double *b,
             const vox_int *ldb, vox_complex_double *c, const vox_int *ldc));
VOX_API void VOX_Somatadd(char ordering, char transa, char transb, int64_t m, int64_t n,
                          float alpha, const float *a, int64_t lda, float beta, const float *b,
                          int64_t ldb, float *c, int64_t ldc);
VOX_API void VOX_Domatadd(char ordering, char transa, char transb, int64_t m, int64_t n,
                          double alpha, const double *a, int64_t lda, double beta, const double *b,
                          int64_t ldb, double *c, int64_t ldc);
VOX_API void VOX_Comatadd(char ordering, char transa, char transb, int64_t m, int64_t n,
                          vox_complex_float alpha, const vox_complex_float *a, int64_t lda,
                          vox_complex_float beta, const vox_complex_float *b, int64_t ldb,
                          vox_complex_float *c, int64_t ldc);
VOX_API void VOX_Zomatadd(char ordering, char transa, char transb, int64_t m, int64_t n,
                          vox_complex_double alpha, const vox_complex_double *a, int64_t lda,
                          vox_complex_double beta, const vox_complex_double *b, int64_t ldb,
                          vox_complex_double *c, int64_t ldc);

#ifdef __cplusplus
}
#endif
#endif
