/* rsk.h - random-number streams: basic generators, and distributions drawn from them.
 *
 * A stream is one generator with its state. Different streams may be used by different threads at the same
 * time; one stream by one thread at a time. Results are the same on all processors and code paths, and do not
 * depend on how a request is split: n numbers in one call are those of any number of calls for n together.
 *
 * Every function returns a status: 0, or one of the errors below. Arguments that an entry point finds bad are
 * reported through xerbla as well, with the function's name and the argument's position.
 *
 * For Fortran every function has two more names, in lower and upper case with an underscore
 * (rsknewstream_, RSKNEWSTREAM_), which take every scalar by address; a stream is an INTEGER*8. */
#ifndef VOX_RSK_H
#define VOX_RSK_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct rsk_stream *rskStream;

/* Basic generators. WH and MT2203 are families: add the number of the member. */
enum {
    RSK_BRNG_MCG31M1 = 0x100000,
    RSK_BRNG_R250 = 0x200000,
    RSK_BRNG_MRG32K3A = 0x300000,
    RSK_BRNG_MCG59 = 0x400000,
    RSK_BRNG_WH = 0x500000, /* + 0 to 272 */
    RSK_BRNG_SOBOL = 0x600000,
    RSK_BRNG_NIEDERR = 0x700000,
    RSK_BRNG_MT19937 = 0x800000,
    RSK_BRNG_MT2203 = 0x900000, /* + 0 to 6023 */
    RSK_BRNG_IABSTRACT = 0xA00000,
    RSK_BRNG_DABSTRACT = 0xB00000,
    RSK_BRNG_SABSTRACT = 0xC00000,
    RSK_BRNG_SFMT19937 = 0xD00000,
    RSK_BRNG_NONDETERM = 0xE00000,
    RSK_BRNG_ARS5 = 0xF00000,
    RSK_BRNG_PHILOX4X32X10 = 0x1000000
};

/* Forms in which seed words describe dimensions of SOBOL and NIEDERR, see docs/rng.md. */
enum { RSK_QUASI_POLYNOMIALS = 1, RSK_QUASI_DIRECTIONS = 2 };

/* The standard tables of SOBOL (dimensions 2 to 40) and NIEDERR (1 to 318): degrees, polynomials over GF(2) with
 * bit i the coefficient of x^i, and eight initial direction integers for each dimension, 0 where there are
 * fewer. */
extern VOX_API const int32_t iSobolIrredPolyDeg[39];
extern VOX_API const uint32_t uSobolIrredPoly[39];
extern VOX_API const uint32_t uSobolMInit[312];
extern VOX_API const int32_t iNiederrIrredPolyDeg[318];
extern VOX_API const uint32_t uNiederrIrredPoly[318];

enum {
    RSK_STATUS_OK = 0,
    RSK_ERROR_UNKNOWN_METHOD = -2, /* a generator's initialisation does not know the method */
    RSK_ERROR_BAD_ARGS = -3,       /* bad argument of an abstract stream or a distribution */
    RSK_ERROR_NO_MEMORY = -4,
    RSK_ERROR_NULL_PTR = -5,        /* null stream, routine or buffer of an abstract stream */
    RSK_ERROR_INVALID_BRNG = -1000, /* no such generator */
    RSK_ERROR_NO_LEAPFROG = -1002,  /* the generator cannot leapfrog */
    RSK_ERROR_NO_SKIPAHEAD = -1003, /* the generator cannot skip ahead */
    RSK_ERROR_BAD_STREAM = -1006,   /* not a stream, or a deleted one */
    RSK_ERROR_STREAM_SIZE = -1008,  /* registration: negative stream size */
    RSK_ERROR_WORD_SIZE = -1009,    /* registration: word size not 4, 8 or 16 */
    RSK_ERROR_SEED_WORDS = -1010,   /* registration: fewer than one seed word */
    RSK_ERROR_BITS = -1011,         /* registration: fewer than one bit */
    RSK_ERROR_NSTREAMS = -1013,     /* leapfrog: negative number of streams */
    RSK_ERROR_CALLBACK = -1120,   /* the callback of an abstract stream returned a negative value */
    RSK_ERROR_NO_ENTROPY = -1130, /* the processor's random source stayed empty, see NONDETERM */
    RSK_ERROR_SEQUENCE_END = -1131,    /* quasi-random: more numbers than the sequence has left */
    RSK_ERROR_NO_UNIFORM_BITS = -1132, /* the generator has no words of uniform bits */
    RSK_ERROR_NO_INSTRUCTIONS = -1140, /* the processor lacks instructions of the generator */
    RSK_ERROR_FILE_OPEN = -1201,       /* the file cannot be opened; errno says why */
    RSK_ERROR_FILE_WRITE = -1202,      /* it cannot be written, in part or at all */
    RSK_ERROR_FILE_READ = -1203,       /* it cannot be read */
    RSK_ERROR_FOREIGN = -1204,         /* what is loaded is no saved stream, or not all of one */
    RSK_ERROR_CHECKSUM = -1205,        /* it has changed since it was saved */
    RSK_ERROR_VERSION = -1206,         /* its format is of another version than 1 */
    RSK_ERROR_BAD_STATE = -1207,       /* the state is none that the generator can have */
    RSK_ERROR_NOT_SAVABLE = -1208      /* abstract streams, and what is too large, are not saved */
};

/* A new stream of the generator, from one seed word or from n. What the words mean is the generator's, see
 * docs/rng.md; n of 0 or less gives its default state. Errors: brng below 0 (argument 2); not reported: no
 * such generator, or an abstract one, -1000; no memory, -4, *stream is null; null pointers, -5; what the
 * generator says to the words, with the stream made nevertheless. */
VOX_API int rskNewStream(rskStream *stream, vox_int brng, uint32_t seed);
VOX_API int rskNewStreamEx(rskStream *stream, vox_int brng, vox_int n, const uint32_t *params);
/* Releases the stream and sets *stream to null. Errors: argument 1. */
VOX_API int rskDeleteStream(rskStream *stream);

/* A new stream that continues as the source does. An abstract one has the same buffer and callback. Errors:
 * the source (argument 2); no memory, -4, *stream is null. */
VOX_API int rskCopyStream(rskStream *stream, rskStream source);
/* The same with a stream that there is, of the same generator. If it is of another, it keeps its generator
 * and gets as many bytes as the source has words of state and it has room for; -1207 where its generator
 * could not work with them. Nothing happens to an abstract stream. Errors: arguments 1 and 2; no memory, -4.
 * The destination has changed only if the result is 0. */
VOX_API int rskCopyStreamState(rskStream destination, rskStream source);

/* Makes the stream number k of nstreams into which the sequence is dealt out, one number each in turn. Errors:
 * the stream (argument 1); nstreams below 0, -1013; not with this generator, -1002, stream unchanged. */
VOX_API int rskLeapfrogStream(rskStream stream, vox_int k, vox_int nstreams);
/* Skips the next nskip numbers. Errors: argument 1; not with this generator, -1003, stream unchanged. */
VOX_API int rskSkipAheadStream(rskStream stream, uint64_t nskip);
/* The identifier that the stream was made with, or a negative status. Errors: argument 1. */
VOX_API int rskGetStreamStateBrng(rskStream stream);

/* Abstract streams deliver numbers of your own from a buffer of n entries, which stays yours and must live as
 * long as the stream and its copies. Where all entries have been used and more are needed, the callback is
 * asked to write the next ones, in order, from buffer[*idx] on, going on at buffer[0] after buffer[*n - 1]:
 * at least *nmin and at most *nmax. It returns how many it wrote. 0 counts as *nmin, more than *nmax as
 * *nmax; after fewer than *nmin it is asked again. A negative result ends the request with -1120: what came
 * before is in the result array. It may look at the stream, but neither use nor delete it.
 *
 * Integers are taken as words of 32 random bits. Floating numbers are of [a, b), a < b, both finite, and
 * are mapped onto what is asked for: a request for [c, d) gets c + (d - c) u, u = (x - a) / (b - a). Numbers
 * outside count as the nearest inside, NaN as a. Integer output of a floating stream is floor(u 2^32),
 * floating output of an integer stream has u = x / 2^32 (single precision: of the upper 24 bits).
 *
 * Errors, not reported: n below 1, no buffer, no callback or no interval, -3; no memory, -4; stream null, -5.
 * To a callback written in Fortran the first argument comes by value. */
typedef int (*rskiCallback)(rskStream stream, vox_int *n, uint32_t *buffer, vox_int *nmin,
                            vox_int *nmax, vox_int *idx);
typedef int (*rskdCallback)(rskStream stream, vox_int *n, double *buffer, vox_int *nmin,
                            vox_int *nmax, vox_int *idx);
typedef int (*rsksCallback)(rskStream stream, vox_int *n, float *buffer, vox_int *nmin,
                            vox_int *nmax, vox_int *idx);
VOX_API int rskiNewAbstractStream(rskStream *stream, vox_int n, uint32_t *buffer,
                                  rskiCallback callback);
VOX_API int rskdNewAbstractStream(rskStream *stream, vox_int n, double *buffer, double a, double b,
                                  rskdCallback callback);
VOX_API int rsksNewAbstractStream(rskStream *stream, vox_int n, float *buffer, float a, float b,
                                  rsksCallback callback);

/* A stream to a file or to memory, and a new stream from there which continues as the saved one did; the
 * format is in docs/streams.md. rskGetStreamSize: the bytes of memory that rskSaveStreamM writes, or a
 * negative status. Loading checks all it reads, and gives *stream null with one of -1201 to -1207 for what
 * is no saved stream, changed or cut off; -4, no memory. rskLoadStreamM reads 36 bytes, and more only if
 * these begin a saved stream. A file that could not be written is no saved stream afterwards. Errors: a bad
 * stream or null `stream` (argument 1), null name or memory (argument 2, -5); -1208, abstract stream.
 * Fortran passes file names as CHARACTER(*); trailing blanks do not count. */
VOX_API int rskSaveStream(rskStream stream, const char *name);
VOX_API int rskLoadStream(rskStream *stream, const char *name);
VOX_API int rskSaveStreamM(rskStream stream, void *memory);
VOX_API int rskLoadStreamM(rskStream *stream, const void *memory);
VOX_API int rskGetStreamSize(rskStream stream);

/* Fortran forms */
VOX_API int rsknewstream_(rskStream *stream, const vox_int *brng, const uint32_t *seed);
VOX_API int RSKNEWSTREAM_(rskStream *stream, const vox_int *brng, const uint32_t *seed);
VOX_API int rsknewstreamex_(rskStream *stream, const vox_int *brng, const vox_int *n,
                            const uint32_t *params);
VOX_API int RSKNEWSTREAMEX_(rskStream *stream, const vox_int *brng, const vox_int *n,
                            const uint32_t *params);
VOX_API int rskdeletestream_(rskStream *stream);
VOX_API int RSKDELETESTREAM_(rskStream *stream);
VOX_API int rskcopystream_(rskStream *stream, const rskStream *source);
VOX_API int RSKCOPYSTREAM_(rskStream *stream, const rskStream *source);
VOX_API int rskcopystreamstate_(const rskStream *destination, const rskStream *source);
VOX_API int RSKCOPYSTREAMSTATE_(const rskStream *destination, const rskStream *source);
VOX_API int rskleapfrogstream_(const rskStream *stream, const vox_int *k, const vox_int *nstreams);
VOX_API int RSKLEAPFROGSTREAM_(const rskStream *stream, const vox_int *k, const vox_int *nstreams);
VOX_API int rskskipaheadstream_(const rskStream *stream, const uint64_t *nskip);
VOX_API int RSKSKIPAHEADSTREAM_(const rskStream *stream, const uint64_t *nskip);
VOX_API int rskgetstreamstatebrng_(const rskStream *stream);
VOX_API int RSKGETSTREAMSTATEBRNG_(const rskStream *stream);
VOX_API int rskinewabstractstream_(rskStream *stream, const vox_int *n, uint32_t *buffer,
                                   rskiCallback callback);
VOX_API int RSKINEWABSTRACTSTREAM_(rskStream *stream, const vox_int *n, uint32_t *buffer,
                                   rskiCallback callback);
VOX_API int rskdnewabstractstream_(rskStream *stream, const vox_int *n, double *buffer,
                                   const double *a, const double *b, rskdCallback callback);
VOX_API int RSKDNEWABSTRACTSTREAM_(rskStream *stream, const vox_int *n, double *buffer,
                                   const double *a, const double *b, rskdCallback callback);
VOX_API int rsksnewabstractstream_(rskStream *stream, const vox_int *n, float *buffer,
                                   const float *a, const float *b, rsksCallback callback);
VOX_API int RSKSNEWABSTRACTSTREAM_(rskStream *stream, const vox_int *n, float *buffer,
                                   const float *a, const float *b, rsksCallback callback);
VOX_API int rsksavestream_(const rskStream *stream, const char *name, size_t name_length);
VOX_API int RSKSAVESTREAM_(const rskStream *stream, const char *name, size_t name_length);
VOX_API int rskloadstream_(rskStream *stream, const char *name, size_t name_length);
VOX_API int RSKLOADSTREAM_(rskStream *stream, const char *name, size_t name_length);
VOX_API int rsksavestreamm_(const rskStream *stream, void *memory);
VOX_API int RSKSAVESTREAMM_(const rskStream *stream, void *memory);
VOX_API int rskloadstreamm_(rskStream *stream, const void *memory);
VOX_API int RSKLOADSTREAMM_(rskStream *stream, const void *memory);
VOX_API int rskgetstreamsize_(const rskStream *stream);
VOX_API int RSKGETSTREAMSIZE_(const rskStream *stream);
/* Distributions: n numbers into r. Wrong arguments are reported with their place in the list and give -3 (the
 * stream: -5, -1006); n = 0 gives 0 whatever follows. Errors of the generator are passed on; what it had made
 * before stands in r, and nothing is written after. A parameter that is not a number passes the checks.
 * Each method takes the same number of uniforms for every result, so that requests may be split at will; the
 * pairs of RSK_GAUSSIAN_BOXMULLER2 alone begin anew with each call. docs/rng.md gives accuracy and tails. */
enum {
    RSK_UNIFORM_DEFAULT = 0,
    RSK_UNIFORM_CLAMP_BIT = 0x40000000, /* added: nothing is rounded to beyond a or b */
    RSK_UNIFORM_BITS_DEFAULT = 0,
    RSK_BERNOULLI_DEFAULT = 0,   /* inverse distribution function, from one uniform */
    RSK_GAUSSIAN_BOXMULLER = 0,  /* one result from two uniforms */
    RSK_GAUSSIAN_BOXMULLER2 = 1, /* two from two; of an odd number the last one's other is lost */
    RSK_GAUSSIAN_INVERSE = 2,    /* inverse distribution function, from one uniform */
    RSK_EXPONENTIAL_INVERSE = 0, /* the same */
    RSK_POISSON_INVERSE = 0      /* the same */
};

/* Uniform on [a, b), a < b; rounding may give b, and with the clamp bit nothing beyond. */
VOX_API int vsRngUniform(vox_int method, rskStream stream, vox_int n, float *r, float a, float b);
VOX_API int vdRngUniform(vox_int method, rskStream stream, vox_int n, double *r, double a,
                         double b);
/* Integers from a to b - 1, a < b. */
VOX_API int viRngUniform(vox_int method, rskStream stream, vox_int n, vox_int *r, vox_int a,
                         vox_int b);
/* The generator's words as they are: r takes n of 4 bytes, of 8 from MCG59, of 16 from WH. */
VOX_API int viRngUniformBits(vox_int method, rskStream stream, vox_int n, uint32_t *r);
/* Words with all bits uniform. Of 32 bits: from R250, MT19937, SFMT19937, MT2203, PHILOX4X32X10, ARS5,
 * NONDETERM, the quasi-random ones, abstract streams, and MCG59, whose upper bits they are. Of 64 bits: two
 * numbers each, the lower half first, from the same but MCG59. Others give -1132. */
VOX_API int viRngUniformBits32(vox_int method, rskStream stream, vox_int n, uint32_t *r);
VOX_API int viRngUniformBits64(vox_int method, rskStream stream, vox_int n, uint64_t *r);
/* 1 with probability p, rounded to single precision; else 0. 0 <= p <= 1. */
VOX_API int viRngBernoulli(vox_int method, rskStream stream, vox_int n, vox_int *r, double p);
/* Normal with mean a and standard deviation sigma > 0. */
VOX_API int vsRngGaussian(vox_int method, rskStream stream, vox_int n, float *r, float a,
                          float sigma);
VOX_API int vdRngGaussian(vox_int method, rskStream stream, vox_int n, double *r, double a,
                          double sigma);
/* a plus exponential with mean beta > 0. */
VOX_API int vsRngExponential(vox_int method, rskStream stream, vox_int n, float *r, float a,
                             float beta);
VOX_API int vdRngExponential(vox_int method, rskStream stream, vox_int n, double *r, double a,
                             double beta);
/* Poisson with mean lambda, 0 < lambda <= 2e9. */
VOX_API int viRngPoisson(vox_int method, rskStream stream, vox_int n, vox_int *r, double lambda);

/* Their Fortran forms */
VOX_API int vsrnguniform_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          float *r, const float *a, const float *b);
VOX_API int VSRNGUNIFORM_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          float *r, const float *a, const float *b);
VOX_API int vdrnguniform_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          double *r, const double *a, const double *b);
VOX_API int VDRNGUNIFORM_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          double *r, const double *a, const double *b);
VOX_API int virnguniform_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          vox_int *r, const vox_int *a, const vox_int *b);
VOX_API int VIRNGUNIFORM_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          vox_int *r, const vox_int *a, const vox_int *b);
VOX_API int virnguniformbits_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              uint32_t *r);
VOX_API int VIRNGUNIFORMBITS_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              uint32_t *r);
VOX_API int virnguniformbits32_(const vox_int *method, const rskStream *stream, const vox_int *n,
                                uint32_t *r);
VOX_API int VIRNGUNIFORMBITS32_(const vox_int *method, const rskStream *stream, const vox_int *n,
                                uint32_t *r);
VOX_API int virnguniformbits64_(const vox_int *method, const rskStream *stream, const vox_int *n,
                                uint64_t *r);
VOX_API int VIRNGUNIFORMBITS64_(const vox_int *method, const rskStream *stream, const vox_int *n,
                                uint64_t *r);
VOX_API int virngbernoulli_(const vox_int *method, const rskStream *stream, const vox_int *n,
                            vox_int *r, const double *p);
VOX_API int VIRNGBERNOULLI_(const vox_int *method, const rskStream *stream, const vox_int *n,
                            vox_int *r, const double *p);
VOX_API int vsrnggaussian_(const vox_int *method, const rskStream *stream, const vox_int *n,
                           float *r, const float *a, const float *sigma);
VOX_API int VSRNGGAUSSIAN_(const vox_int *method, const rskStream *stream, const vox_int *n,
                           float *r, const float *a, const float *sigma);
VOX_API int vdrnggaussian_(const vox_int *method, const rskStream *stream, const vox_int *n,
                           double *r, const double *a, const double *sigma);
VOX_API int VDRNGGAUSSIAN_(const vox_int *method, const rskStream *stream, const vox_int *n,
                           double *r, const double *a, const double *sigma);
VOX_API int vsrngexponential_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              float *r, const float *a, const float *beta);
VOX_API int VSRNGEXPONENTIAL_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              float *r, const float *a, const float *beta);
VOX_API int vdrngexponential_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              double *r, const double *a, const double *beta);
VOX_API int VDRNGEXPONENTIAL_(const vox_int *method, const rskStream *stream, const vox_int *n,
                              double *r, const double *a, const double *beta);
VOX_API int virngpoisson_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          vox_int *r, const double *lambda);
VOX_API int VIRNGPOISSON_(const vox_int *method, const rskStream *stream, const vox_int *n,
                          vox_int *r, const double *lambda);

#ifdef __cplusplus
}
#endif

#endif
