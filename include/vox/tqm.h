/* tqm.h - vector mathematics: functions of vectors, and the modes, status and error callback of a thread. */
#ifndef VOX_TQM_H
#define VOX_TQM_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The mode of a thread: one value of each of four fields, or-ed. tqmSetMode replaces the fields that have any
 * bit set in its argument, whole, and keeps the others. */
enum {
    /* Accuracy. */
    TQM_LA = 0x1, /* below 4 ulp */
    TQM_HA = 0x2, /* below 1 ulp; the default */
    TQM_EP = 0x3, /* half of the bits: 11 in single, 26 in double precision */
    TQM_ACCURACY_MASK = 0xF,

    /* What happens to an error beside the status. The default is errno, exception and callback. */
    TQM_ERRMODE_IGNORE = 0x100, /* the status is recorded, and that is all */
    TQM_ERRMODE_ERRNO = 0x200,
    TQM_ERRMODE_STDERR = 0x400,
    TQM_ERRMODE_EXCEPT = 0x800, /* a floating-point exception of the x87 unit */
    TQM_ERRMODE_CALLBACK = 0x1000,
    TQM_ERRMODE_NOERR = 0x2000, /* nothing at all, not even the status */
    TQM_ERRMODE_DEFAULT = 0x1A00,
    TQM_ERRMODE_MASK = 0xFF00,

    TQM_FURTHER_MASK = 0x3C0000, /* kept and returned as set */

    /* Which exceptions trap, with TQM_ERRMODE_EXCEPT. */
    TQM_TRAP_INVALID = 0x1000000,
    TQM_TRAP_DIVBYZERO = 0x2000000,
    TQM_TRAP_OVERFLOW = 0x4000000,
    TQM_TRAP_UNDERFLOW = 0x8000000,
    TQM_TRAP_MASK = 0xF000000,

    TQM_DEFAULT_MODE = TQM_HA | TQM_ERRMODE_DEFAULT
};

/* Statuses. */
enum {
    TQM_STATUS_BADMEM = -2,  /* a null pointer */
    TQM_STATUS_BADSIZE = -1, /* a negative count */
    TQM_STATUS_OK = 0,
    TQM_STATUS_ERRDOM = 1,   /* an argument out of the function's domain */
    TQM_STATUS_SING = 2,     /* a pole: the result is infinite */
    TQM_STATUS_OVERFLOW = 3, /* the result is too large */
    TQM_STATUS_UNDERFLOW = 4 /* the result is too small for a normal number */
};

/* What a callback is told. Single-precision values are widened. The callback may change dbR1 and dbR2 (and
 * their imaginary parts): what it leaves there becomes the result, if it returns 0. */
typedef struct tqmErrorContext {
    int32_t iCode; /* status */
    int32_t
        iIndex; /* of the element, counted from the start of the caller's vector; BADSIZE: the count */
    double dbA1, dbA2; /* arguments; complex ones: real parts */
    double dbR1, dbR2; /* results */
    char cFuncName[64];
    int32_t iFuncNameLen;
    double dbA1Im, dbA2Im, dbR1Im, dbR2Im; /* imaginary parts */
} tqmErrorContext;

/* Non-zero: the error has been dealt with, nothing more is done about it. */
typedef int (*tqmErrorCallBack)(tqmErrorContext *context);

/* All of this is the calling thread's own; the threads of a call have their caller's. A mode that was never
 * set is taken from VOX_TQM_MODE, else TQM_DEFAULT_MODE. For Fortran each function has two more names, in
 * lower and upper case with an underscore (tqmsetmode_, TQMSETMODE_), with scalars by address. */

VOX_API uint32_t tqmSetMode(uint32_t mode); /* returns the mode before */
VOX_API uint32_t tqmGetMode(void);

/* The status of the last error; setting and clearing return the one before. */
VOX_API int tqmSetErrStatus(int status);
VOX_API int tqmGetErrStatus(void);
VOX_API int tqmClearErrStatus(void);

/* Registers a callback and sets TQM_ERRMODE_CALLBACK, or with null clears both; returns the callback before.
 * A mode whose only error bit was TQM_ERRMODE_CALLBACK keeps it, since an empty field replaces nothing. */
VOX_API tqmErrorCallBack tqmSetErrorCallBack(tqmErrorCallBack callback);
VOX_API tqmErrorCallBack tqmGetErrorCallBack(void);
VOX_API tqmErrorCallBack tqmClearErrorCallBack(void);

VOX_API uint32_t tqmsetmode_(const uint32_t *mode);
VOX_API uint32_t TQMSETMODE_(const uint32_t *mode);
VOX_API uint32_t tqmgetmode_(void);
VOX_API uint32_t TQMGETMODE_(void);
VOX_API int tqmseterrstatus_(const int *status);
VOX_API int TQMSETERRSTATUS_(const int *status);
VOX_API int tqmgeterrstatus_(void);
VOX_API int TQMGETERRSTATUS_(void);
VOX_API int tqmclearerrstatus_(void);
VOX_API int TQMCLEARERRSTATUS_(void);
VOX_API tqmErrorCallBack tqmseterrorcallback_(tqmErrorCallBack callback);
VOX_API tqmErrorCallBack TQMSETERRORCALLBACK_(tqmErrorCallBack callback);
VOX_API tqmErrorCallBack tqmgeterrorcallback_(void);
VOX_API tqmErrorCallBack TQMGETERRORCALLBACK_(void);
VOX_API tqmErrorCallBack tqmclearerrorcallback_(void);
VOX_API tqmErrorCallBack TQMCLEARERRORCALLBACK_(void);

/* Functions: r[i] = f(a[i]), or f(a[i], b[i]), for 0 <= i < n.
 *
 * r may be a or b; vectors that overlap in another way give undefined results. Errors of the argument, by
 * IEEE 754 and Annex F of C: where no number is the result (ERRDOM, the result is NaN), at a pole (SING), where
 * the result is too large (OVERFLOW), and where a result below the smallest normal number has been rounded
 * (UNDERFLOW). NaN gives NaN without an error. A negative n or a null pointer is reported through xerbla and as
 * TQM_STATUS_BADSIZE or TQM_STATUS_BADMEM, and nothing is computed; n = 0 does nothing at all.
 *
 * The vm forms work under a mode of their own for the call: fields that are empty in it stay the thread's.
 * Whatever the accuracy, Abs, Add, Ceil, Div, Floor, Inv, Mul, Round, Sqr, Sqrt and Sub may be exactly rounded.
 *
 * For Fortran each has two more names, with scalars by address (vdexp_, VDEXP_). */

/* |a| */
VOX_API void vsAbs(vox_int n, const float *a, float *r);
VOX_API void vdAbs(vox_int n, const double *a, double *r);
VOX_API void vmsAbs(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdAbs(vox_int n, const double *a, double *r, int64_t mode);

/* a + b */
VOX_API void vsAdd(vox_int n, const float *a, const float *b, float *r);
VOX_API void vdAdd(vox_int n, const double *a, const double *b, double *r);
VOX_API void vmsAdd(vox_int n, const float *a, const float *b, float *r, int64_t mode);
VOX_API void vmdAdd(vox_int n, const double *a, const double *b, double *r, int64_t mode);

/* the smallest integer that is not below a */
VOX_API void vsCeil(vox_int n, const float *a, float *r);
VOX_API void vdCeil(vox_int n, const double *a, double *r);
VOX_API void vmsCeil(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdCeil(vox_int n, const double *a, double *r, int64_t mode);

/* a / b */
VOX_API void vsDiv(vox_int n, const float *a, const float *b, float *r);
VOX_API void vdDiv(vox_int n, const double *a, const double *b, double *r);
VOX_API void vmsDiv(vox_int n, const float *a, const float *b, float *r, int64_t mode);
VOX_API void vmdDiv(vox_int n, const double *a, const double *b, double *r, int64_t mode);

/* e^a */
VOX_API void vsExp(vox_int n, const float *a, float *r);
VOX_API void vdExp(vox_int n, const double *a, double *r);
VOX_API void vmsExp(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdExp(vox_int n, const double *a, double *r, int64_t mode);

/* the largest integer that is not above a */
VOX_API void vsFloor(vox_int n, const float *a, float *r);
VOX_API void vdFloor(vox_int n, const double *a, double *r);
VOX_API void vmsFloor(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdFloor(vox_int n, const double *a, double *r, int64_t mode);

/* 1 / a */
VOX_API void vsInv(vox_int n, const float *a, float *r);
VOX_API void vdInv(vox_int n, const double *a, double *r);
VOX_API void vmsInv(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdInv(vox_int n, const double *a, double *r, int64_t mode);

/* 1 / sqrt(a) */
VOX_API void vsInvSqrt(vox_int n, const float *a, float *r);
VOX_API void vdInvSqrt(vox_int n, const double *a, double *r);
VOX_API void vmsInvSqrt(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdInvSqrt(vox_int n, const double *a, double *r, int64_t mode);

/* the natural logarithm of a */
VOX_API void vsLn(vox_int n, const float *a, float *r);
VOX_API void vdLn(vox_int n, const double *a, double *r);
VOX_API void vmsLn(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdLn(vox_int n, const double *a, double *r, int64_t mode);

/* ln(1 + a) */
VOX_API void vsLog1p(vox_int n, const float *a, float *r);
VOX_API void vdLog1p(vox_int n, const double *a, double *r);
VOX_API void vmsLog1p(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdLog1p(vox_int n, const double *a, double *r, int64_t mode);

/* a b */
VOX_API void vsMul(vox_int n, const float *a, const float *b, float *r);
VOX_API void vdMul(vox_int n, const double *a, const double *b, double *r);
VOX_API void vmsMul(vox_int n, const float *a, const float *b, float *r, int64_t mode);
VOX_API void vmdMul(vox_int n, const double *a, const double *b, double *r, int64_t mode);

/* a^b */
VOX_API void vsPow(vox_int n, const float *a, const float *b, float *r);
VOX_API void vdPow(vox_int n, const double *a, const double *b, double *r);
VOX_API void vmsPow(vox_int n, const float *a, const float *b, float *r, int64_t mode);
VOX_API void vmdPow(vox_int n, const double *a, const double *b, double *r, int64_t mode);

/* a^b with one b for all elements */
VOX_API void vsPowx(vox_int n, const float *a, float b, float *r);
VOX_API void vdPowx(vox_int n, const double *a, double b, double *r);
VOX_API void vmsPowx(vox_int n, const float *a, float b, float *r, int64_t mode);
VOX_API void vmdPowx(vox_int n, const double *a, double b, double *r, int64_t mode);

/* the nearest integer, away from zero half way */
VOX_API void vsRound(vox_int n, const float *a, float *r);
VOX_API void vdRound(vox_int n, const double *a, double *r);
VOX_API void vmsRound(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdRound(vox_int n, const double *a, double *r, int64_t mode);

/* a^2 */
VOX_API void vsSqr(vox_int n, const float *a, float *r);
VOX_API void vdSqr(vox_int n, const double *a, double *r);
VOX_API void vmsSqr(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdSqr(vox_int n, const double *a, double *r, int64_t mode);

/* the square root of a */
VOX_API void vsSqrt(vox_int n, const float *a, float *r);
VOX_API void vdSqrt(vox_int n, const double *a, double *r);
VOX_API void vmsSqrt(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdSqrt(vox_int n, const double *a, double *r, int64_t mode);

/* a - b */
VOX_API void vsSub(vox_int n, const float *a, const float *b, float *r);
VOX_API void vdSub(vox_int n, const double *a, const double *b, double *r);
VOX_API void vmsSub(vox_int n, const float *a, const float *b, float *r, int64_t mode);
VOX_API void vmdSub(vox_int n, const double *a, const double *b, double *r, int64_t mode);

/* the hyperbolic tangent of a */
VOX_API void vsTanh(vox_int n, const float *a, float *r);
VOX_API void vdTanh(vox_int n, const double *a, double *r);
VOX_API void vmsTanh(vox_int n, const float *a, float *r, int64_t mode);
VOX_API void vmdTanh(vox_int n, const double *a, double *r, int64_t mode);

/* The Fortran names. */
VOX_API void vsabs_(const vox_int *n, const float *a, float *r);
VOX_API void VSABS_(const vox_int *n, const float *a, float *r);
VOX_API void vdabs_(const vox_int *n, const double *a, double *r);
VOX_API void VDABS_(const vox_int *n, const double *a, double *r);
VOX_API void vmsabs_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSABS_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdabs_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDABS_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsadd_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSADD_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vdadd_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDADD_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmsadd_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void VMSADD_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void vmdadd_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);
VOX_API void VMDADD_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);

VOX_API void vsceil_(const vox_int *n, const float *a, float *r);
VOX_API void VSCEIL_(const vox_int *n, const float *a, float *r);
VOX_API void vdceil_(const vox_int *n, const double *a, double *r);
VOX_API void VDCEIL_(const vox_int *n, const double *a, double *r);
VOX_API void vmsceil_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSCEIL_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdceil_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDCEIL_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsdiv_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSDIV_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vddiv_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDDIV_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmsdiv_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void VMSDIV_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void vmddiv_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);
VOX_API void VMDDIV_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);

VOX_API void vsexp_(const vox_int *n, const float *a, float *r);
VOX_API void VSEXP_(const vox_int *n, const float *a, float *r);
VOX_API void vdexp_(const vox_int *n, const double *a, double *r);
VOX_API void VDEXP_(const vox_int *n, const double *a, double *r);
VOX_API void vmsexp_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSEXP_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdexp_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDEXP_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsfloor_(const vox_int *n, const float *a, float *r);
VOX_API void VSFLOOR_(const vox_int *n, const float *a, float *r);
VOX_API void vdfloor_(const vox_int *n, const double *a, double *r);
VOX_API void VDFLOOR_(const vox_int *n, const double *a, double *r);
VOX_API void vmsfloor_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSFLOOR_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdfloor_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDFLOOR_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsinv_(const vox_int *n, const float *a, float *r);
VOX_API void VSINV_(const vox_int *n, const float *a, float *r);
VOX_API void vdinv_(const vox_int *n, const double *a, double *r);
VOX_API void VDINV_(const vox_int *n, const double *a, double *r);
VOX_API void vmsinv_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSINV_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdinv_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDINV_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsinvsqrt_(const vox_int *n, const float *a, float *r);
VOX_API void VSINVSQRT_(const vox_int *n, const float *a, float *r);
VOX_API void vdinvsqrt_(const vox_int *n, const double *a, double *r);
VOX_API void VDINVSQRT_(const vox_int *n, const double *a, double *r);
VOX_API void vmsinvsqrt_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSINVSQRT_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdinvsqrt_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDINVSQRT_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsln_(const vox_int *n, const float *a, float *r);
VOX_API void VSLN_(const vox_int *n, const float *a, float *r);
VOX_API void vdln_(const vox_int *n, const double *a, double *r);
VOX_API void VDLN_(const vox_int *n, const double *a, double *r);
VOX_API void vmsln_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSLN_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdln_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDLN_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vslog1p_(const vox_int *n, const float *a, float *r);
VOX_API void VSLOG1P_(const vox_int *n, const float *a, float *r);
VOX_API void vdlog1p_(const vox_int *n, const double *a, double *r);
VOX_API void VDLOG1P_(const vox_int *n, const double *a, double *r);
VOX_API void vmslog1p_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSLOG1P_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdlog1p_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDLOG1P_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vsmul_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSMUL_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vdmul_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDMUL_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmsmul_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void VMSMUL_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void vmdmul_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);
VOX_API void VMDMUL_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);

VOX_API void vspow_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSPOW_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vdpow_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDPOW_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmspow_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void VMSPOW_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void vmdpow_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);
VOX_API void VMDPOW_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);

VOX_API void vspowx_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSPOWX_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vdpowx_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDPOWX_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmspowx_(const vox_int *n, const float *a, const float *b, float *r,
                      const int64_t *mode);
VOX_API void VMSPOWX_(const vox_int *n, const float *a, const float *b, float *r,
                      const int64_t *mode);
VOX_API void vmdpowx_(const vox_int *n, const double *a, const double *b, double *r,
                      const int64_t *mode);
VOX_API void VMDPOWX_(const vox_int *n, const double *a, const double *b, double *r,
                      const int64_t *mode);

VOX_API void vsround_(const vox_int *n, const float *a, float *r);
VOX_API void VSROUND_(const vox_int *n, const float *a, float *r);
VOX_API void vdround_(const vox_int *n, const double *a, double *r);
VOX_API void VDROUND_(const vox_int *n, const double *a, double *r);
VOX_API void vmsround_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSROUND_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdround_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDROUND_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vssqr_(const vox_int *n, const float *a, float *r);
VOX_API void VSSQR_(const vox_int *n, const float *a, float *r);
VOX_API void vdsqr_(const vox_int *n, const double *a, double *r);
VOX_API void VDSQR_(const vox_int *n, const double *a, double *r);
VOX_API void vmssqr_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSSQR_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdsqr_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDSQR_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vssqrt_(const vox_int *n, const float *a, float *r);
VOX_API void VSSQRT_(const vox_int *n, const float *a, float *r);
VOX_API void vdsqrt_(const vox_int *n, const double *a, double *r);
VOX_API void VDSQRT_(const vox_int *n, const double *a, double *r);
VOX_API void vmssqrt_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSSQRT_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdsqrt_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDSQRT_(const vox_int *n, const double *a, double *r, const int64_t *mode);

VOX_API void vssub_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void VSSUB_(const vox_int *n, const float *a, const float *b, float *r);
VOX_API void vdsub_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void VDSUB_(const vox_int *n, const double *a, const double *b, double *r);
VOX_API void vmssub_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void VMSSUB_(const vox_int *n, const float *a, const float *b, float *r,
                     const int64_t *mode);
VOX_API void vmdsub_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);
VOX_API void VMDSUB_(const vox_int *n, const double *a, const double *b, double *r,
                     const int64_t *mode);

VOX_API void vstanh_(const vox_int *n, const float *a, float *r);
VOX_API void VSTANH_(const vox_int *n, const float *a, float *r);
VOX_API void vdtanh_(const vox_int *n, const double *a, double *r);
VOX_API void VDTANH_(const vox_int *n, const double *a, double *r);
VOX_API void vmstanh_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void VMSTANH_(const vox_int *n, const float *a, float *r, const int64_t *mode);
VOX_API void vmdtanh_(const vox_int *n, const double *a, double *r, const int64_t *mode);
VOX_API void VMDTANH_(const vox_int *n, const double *a, double *r, const int64_t *mode);

#ifdef __cplusplus
}
#endif

#endif
