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
    RSK_ERROR_CALLBACK = -1120, /* the callback of an abstract stream returned a negative value */
    RSK_ERROR_NO_INSTRUCTIONS = -1140 /* the processor lacks instructions of the generator */
};

/* A new stream of the generator, from one seed word or from n. What the words mean is the generator's, see
 * docs/rng.md; n of 0 or less gives its default state. Errors: brng below 0 (argument 2), no such generator:
 * -1000; no memory: -4, *stream is null. */
VOX_API int rskNewStream(rskStream *stream, vox_int brng, uint32_t seed);
VOX_API int rskNewStreamEx(rskStream *stream, vox_int brng, vox_int n, const uint32_t *params);
/* Releases the stream and sets *stream to null. */
VOX_API int rskDeleteStream(rskStream *stream);

/* Makes the stream number k of nstreams into which the sequence is dealt out, one number each in turn. */
VOX_API int rskLeapfrogStream(rskStream stream, vox_int k, vox_int nstreams);
/* Skips the next nskip numbers. */
VOX_API int rskSkipAheadStream(rskStream stream, uint64_t nskip);
VOX_API int rskGetStreamStateBrng(rskStream stream);

#ifdef __cplusplus
}
#endif

#endif
