/*
 * service.h - the library's controls: code path, errors, threads, memory, logging, timers, version.
 *
 * A function that takes scalars by value is for C. Fortran programs call the same name: their compilers
 * add an underscore or use upper case, and both of those spellings take every scalar by address
 * (vox_set_num_threads_, VOX_SET_NUM_THREADS). Unless a comment says otherwise, any number of threads
 * may call any function at any time, and a setting takes effect from the next call.
 *
 * The environment variables behind the settings are listed in docs/environment.md.
 */
#ifndef VOX_SERVICE_H
#define VOX_SERVICE_H

#include <stdarg.h>
#include <stdio.h>

#include "vox/types.h"

/* Lets the compiler check formats: kind printf or scanf, the position of the format and that of its
 * first argument (0 for a va_list). */
#if defined(__GNUC__)
#define VOX_FORMAT(kind, position, first) __attribute__((__format__(kind, position, first)))
#else
#define VOX_FORMAT(kind, position, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Processor and code path
 *
 * Every routine exists in several copies, one per code path. The library chooses one path for the
 * process at the first computational call, from what the processor and the operating system support.
 */

/* Processor types, as vox_get_cpu_type returns them. 1 is reserved. */
enum {
    VOX_CPU_DEF = 0,
    VOX_CPU_SSSE3 = 2,
    VOX_CPU_SSE42 = 3,
    VOX_CPU_AVX = 4,
    VOX_CPU_AVX2 = 5,
    VOX_CPU_AVX512_ZEL = 6,
    VOX_CPU_AVX512 = 7,
    VOX_CPU_AVX512_ZEL_E1 = 8 /* only from a re-evaluating query; runs the avx512_zel path */
};

/* The type whose code path runs. reevaluate = 0: the choice made for the process (made now, if this is
 * the first call). Otherwise: what the choice would be with the settings of this moment. */
VOX_API int vox_get_cpu_type(int reevaluate);

/* Instruction ceilings for vox_enable_instructions and VOX_ENABLE_INSTRUCTIONS. */
enum {
    VOX_ENABLE_SSE4_2 = 0,
    VOX_ENABLE_AVX = 1,
    VOX_ENABLE_AVX2 = 2,
    VOX_ENABLE_AVX512_ZEL = 3,
    VOX_ENABLE_AVX512 = 4,
    VOX_ENABLE_AVX512_ZEL_E1 = 5
};

/* Lowers the ceiling of the code path. Returns 1 when accepted; 0, changing nothing, when the
 * processor lacks the level, is not a supported one, or a debug type is in force. Either way
 * VOX_ENABLE_INSTRUCTIONS is not consulted afterwards. Call it before the first computational call:
 * a path once chosen stays. */
VOX_API int vox_enable_instructions(int level);

/* Branches of conditional numerical reproducibility (CNR). */
enum {
    VOX_CBWR_OFF = 1,
    VOX_CBWR_AUTO = 2,
    VOX_CBWR_COMPATIBLE = 3,
    VOX_CBWR_SSE2 = 4,
    VOX_CBWR_SSSE3 = 6,
    VOX_CBWR_SSE4_1 = 7,
    VOX_CBWR_SSE4_2 = 8,
    VOX_CBWR_AVX = 9,
    VOX_CBWR_AVX2 = 10,
    VOX_CBWR_AVX512_ZEL = 11,
    VOX_CBWR_AVX512 = 12,
    VOX_CBWR_AVX512_ZEL_E1 = 13
};

/* Results of vox_cbwr_set. */
enum {
    VOX_CBWR_SUCCESS = 0,
    VOX_CBWR_ERR_INVALID = -1,     /* no such branch */
    VOX_CBWR_ERR_UNSUPPORTED = -2, /* the processor lacks the branch's instructions */
    VOX_CBWR_ERR_TOO_LATE = -3     /* the code path has been chosen; the mode stays as it is */
};

/* Sets the reproducibility mode: the branch in the low 6 bits. With a branch other than OFF the same
 * call on the same number of threads gives the same bits, run after run, whatever the alignment of its
 * operands; a branch from COMPATIBLE up also gives the same bits on every processor that supports it.
 * Must come before the first computational call. */
VOX_API int vox_cbwr_set(int mode);

/* The reproducibility mode: what = 1 asks for the branch alone, anything else for the whole mode. */
VOX_API int vox_cbwr_get(int what);

/* The branch that VOX_CBWR_AUTO stands for on this processor. */
VOX_API int vox_cbwr_get_auto_branch(void);

/* Processor generations. An identifier serves tuning only; what may run is decided by features. */
enum {
    VOX_UARCH_UNKNOWN = 0,
    VOX_UARCH_BASELINE = 1,   /* SSE2 or SSE3 */
    VOX_UARCH_SMALL_CORE = 2, /* in-order small cores */
    VOX_UARCH_SSSE3 = 3,
    VOX_UARCH_SSE42 = 4,
    VOX_UARCH_AVX = 5,
    VOX_UARCH_AVX2 = 6,
    VOX_UARCH_ZEL = 7,    /* many-core, AVX-512 ER and PF */
    VOX_UARCH_ZEL_E1 = 8, /* many-core, with AVX512_4FMAPS and AVX512_4VNNIW */
    VOX_UARCH_AVX512 = 9,
    VOX_UARCH_AVX512_IFMA = 10, /* AVX-512 with IFMA and VBMI */
    VOX_UARCH_ZEN1 = 101,       /* AVX2 with 128-bit data paths (Zen, Zen+) */
    VOX_UARCH_ZEN2 = 102,
    VOX_UARCH_ZEN3 = 103,
    VOX_UARCH_ZEN4 = 104, /* AVX-512 with 256-bit data paths */
    VOX_UARCH_ZEN5 = 105
};

VOX_API int vox_get_microarchitecture(void);

/*
 * Errors and callbacks
 *
 * BLAS and LAPACK routines report a bad argument through xerbla and return; the library never ends
 * the process for it. A program replaces the report by defining any one of xerbla's four spellings,
 * or with vox_set_xerbla. See docs/errors.md.
 */

/* name: the routine's name, name_length characters, not necessarily terminated. *code: the 1-based
 * number of the bad parameter, or one of the codes below, or minus the number of an internal
 * condition. */
typedef void (*vox_xerbla_handler)(const char *name, const vox_int *code, int name_length);

enum {
    VOX_XERBLA_WORKSPACE = 1000,             /* not enough workspace */
    VOX_XERBLA_INCOMPATIBLE_OPTIONAL = 1001, /* optional parameters that exclude each other */
    VOX_XERBLA_OUT_OF_MEMORY = 1089,
    VOX_XERBLA_COPROCESSOR = 1212
};

/* The standard report: an empty line and one line on standard output, of at most 20 characters of
 * the name. Replaceable; of several definitions in a program the library calls the first of
 * xerbla_, xerbla, XERBLA_ and XERBLA. */
VOX_API void xerbla(const char *name, const vox_int *code, int name_length);
VOX_API void xerbla_(const char *name, const vox_int *code, int name_length);
VOX_API void XERBLA(const char *name, const vox_int *code, int name_length);
VOX_API void XERBLA_(const char *name, const vox_int *code, int name_length);

/* Reports parameter number `parameter` of a C interface routine, the layout being number 1. */
VOX_API void cblas_xerbla(const char *name, vox_int parameter);
/* Reports that the routine could not get workspace. */
VOX_API void cblas_xerbla_malloc_error(const char *name);

/* Registers the handler of every report, before xerbla; null restores xerbla. Returns the handler
 * that was in force, which may be passed back. */
VOX_API vox_xerbla_handler vox_set_xerbla(vox_xerbla_handler handler);

/* Long computations call the progress routine from time to time, in the Fortran calling form:
 * thread number, step and its name, the name's length. A non-zero result asks the routine to stop. */
typedef int (*vox_progress_handler)(const vox_int *thread, const vox_int *step, const char *stage,
                                    int stage_length);

/* The library's own returns 0. Replaceable, as xerbla is. */
VOX_API int vox_progress(const vox_int *thread, const vox_int *step, const char *stage,
                         int stage_length);
VOX_API int vox_progress_(const vox_int *thread, const vox_int *step, const char *stage,
                          int stage_length);
VOX_API int VOX_PROGRESS(const vox_int *thread, const vox_int *step, const char *stage,
                         int stage_length);
VOX_API int VOX_PROGRESS_(const vox_int *thread, const vox_int *step, const char *stage,
                          int stage_length);

VOX_API vox_progress_handler vox_set_progress(vox_progress_handler handler);

/* Called instead of exit when a fatal condition (a processor without SSE2, an unsupported debug type)
 * ends the process. Null restores exit. A handler that returns lets the caller go on. */
typedef void (*vox_exit_handler)(int status);
VOX_API void vox_set_exit_handler(vox_exit_handler handler);

/*
 * Threads
 *
 * The library runs on the OpenMP runtime's threads and starts none of its own. A call made from inside
 * a parallel region runs on one thread while the dynamic flag is on.
 */

enum {
    VOX_DOMAIN_ALL = 0,
    VOX_DOMAIN_BLAS = 1,
    VOX_DOMAIN_FFT = 2,
    VOX_DOMAIN_TQM = 3, /* vector mathematics */
    VOX_DOMAIN_PARDISO = 4
};

/* Threads for all domains; n < 1 is ignored. */
VOX_API void vox_set_num_threads(int n);
/* Threads for one domain; n = 0 removes the domain's own count. Returns 1, or 0 for a bad argument. */
VOX_API int vox_domain_set_num_threads(int n, int domain);
/* Threads for calls made by the calling thread, before every other setting; n = 0 removes it.
 * Returns the previous value, 0 for none. */
VOX_API int vox_set_num_threads_local(int n);
/* The number of threads that a call made now may use: in general, and in one domain. */
VOX_API int vox_get_max_threads(void);
VOX_API int vox_domain_get_max_threads(int domain);

/* The dynamic flag (on unless set): the library may use fewer threads than asked for, never more than
 * there are physical cores or than the control group's quota allows, and one inside a parallel region. */
VOX_API void vox_set_dynamic(int flag);
VOX_API int vox_get_dynamic(void);

/* 1: the program's MPI library allows calls from several threads, so every process may use its full
 * count; anything else: each process keeps to one thread. Until the first call the count follows the
 * processes per node. */
VOX_API void vox_mpi_safe(int flag);

/* The stripe count of matrix multiplication: threads along the columns of the result. 0: chosen by
 * the library; negative: ignored. */
VOX_API void vox_set_num_stripes(int n);
VOX_API int vox_get_num_stripes(void);

/*
 * Memory
 */

/* Aligned memory. alignment in bytes: a power of two from 64 to 2^31 (a smaller one, or no power of
 * two, counts as 64; nobody gets a larger one). Null when size is 0 or there is no memory. Release
 * with vox_free, on any thread; a null pointer is ignored. */
VOX_API void *vox_malloc(size_t size, size_t alignment);
VOX_API void *VOX_MALLOC(size_t size, size_t alignment);
VOX_API void vox_free(void *pointer);
VOX_API void VOX_FREE(void *pointer);
/* count elements of size bytes each, set to zero. */
VOX_API void *vox_calloc(size_t count, size_t size, size_t alignment);
/* Resizes, keeping the contents and the alignment of the block. Null, with the old block untouched,
 * when there is no memory; size 0 releases it; a null pointer asks for a new block. */
VOX_API void *vox_realloc(void *pointer, size_t size);

/* The functions behind every allocation of the library: the C library's, until a program stores its
 * own here, all four, before its first call of the library. They must stay callable until the
 * process ends, may be called by any thread, and may use the library. */
extern VOX_API void *(*i_malloc)(size_t size);
extern VOX_API void *(*i_calloc)(size_t count, size_t size);
extern VOX_API void *(*i_realloc)(void *pointer, size_t size);
extern VOX_API void (*i_free)(void *pointer);

/* Routines keep up to five scratch buffers per thread for their next call. These release the buffers
 * that no running call uses: of all threads, of the calling thread. */
VOX_API void vox_free_buffers(void);
VOX_API void vox_thread_free_buffers(void);
/* Turns the keeping of scratch buffers off for the rest of the process; those already kept stay
 * until they are released. Returns 1. */
VOX_API int vox_disable_fast_mm(void);
/* Bytes held by the library (with the scratch it keeps) and its callers through vox_malloc, with
 * what alignment costs; *count receives the blocks and may be null. */
VOX_API int64_t vox_mem_stat(int *count);
/* Peak of those bytes. mode 1: start, 0: stop, 2: read, -1: read and restart from the current bytes.
 * -1 when tracking is off or the mode is another. */
VOX_API int64_t vox_peak_mem_usage(int mode);
/* Budget of high-bandwidth memory (many-core processors only) in MiB, for kind 1; negative for no
 * limit. What is held of it already counts. Returns 1, or 0 for another kind. */
VOX_API int vox_set_memory_limit(int kind, int64_t limit_mib);
enum { VOX_MEM_FAST = 1 };

/*
 * Verbose mode, timers, version
 */

/* 1: every computational call prints a line with its arguments, time and settings; 0: none. Returns
 * the mode, or -1 for any other argument, which changes nothing. */
VOX_API int vox_verbose(int mode);
/* File to which the lines are appended. 0 when accepted; 1, and standard output from then on, when
 * the name is empty, has 4096 characters or more, or cannot be opened. */
VOX_API int vox_verbose_output_file(const char *name);

/* Wall-clock seconds from an arbitrary origin. */
VOX_API double dsecnd(void);
VOX_API double dsecnd_(void);
VOX_API double DSECND(void);
/* The processor's time-stamp counter, and its frequency in GHz. */
VOX_API void vox_get_cpu_clocks(uint64_t *clocks);
VOX_API double vox_get_clocks_frequency(void);
/* The processor's frequency in GHz: as it runs now, and as it is rated. */
VOX_API double vox_get_cpu_frequency(void);
VOX_API double vox_get_max_cpu_frequency(void);

typedef struct {
    int major_version;
    int minor_version;
    int update;
    const char *product_status;
    const char *build;
    const char *processor; /* what the chosen code path is for */
    const char *platform;
} vox_version;

VOX_API void vox_get_version(vox_version *version);
/* The version as text in buffer[0 .. length): cut at length, or filled with blanks; no terminator,
 * as a Fortran CHARACTER variable wants it. */
VOX_API void vox_get_version_string(char *buffer, int length);

/*
 * Why the library does what it does
 */

/* Calls emit once per fact about this process: the processor, the code path and the reason for it,
 * threads per domain and where each number came from, topology, memory. The vox-info tool prints it. */
typedef void (*vox_fact_handler)(void *context, const char *section, const char *key,
                                 const char *value);
VOX_API void vox_explain(vox_fact_handler emit, void *context);

/*
 * Fortran forms of the functions above that take scalars by value
 */

VOX_API vox_int vox_get_cpu_type_(const vox_int *reevaluate);
VOX_API vox_int VOX_GET_CPU_TYPE(const vox_int *reevaluate);
VOX_API vox_int vox_enable_instructions_(const vox_int *level);
VOX_API vox_int VOX_ENABLE_INSTRUCTIONS(const vox_int *level);
VOX_API vox_int vox_cbwr_set_(const vox_int *mode);
VOX_API vox_int VOX_CBWR_SET(const vox_int *mode);
VOX_API vox_int vox_cbwr_get_(const vox_int *what);
VOX_API vox_int VOX_CBWR_GET(const vox_int *what);
VOX_API vox_int vox_cbwr_get_auto_branch_(void);
VOX_API vox_int VOX_CBWR_GET_AUTO_BRANCH(void);
VOX_API void vox_set_num_threads_(const vox_int *n);
VOX_API void VOX_SET_NUM_THREADS(const vox_int *n);
VOX_API vox_int vox_domain_set_num_threads_(const vox_int *n, const vox_int *domain);
VOX_API vox_int VOX_DOMAIN_SET_NUM_THREADS(const vox_int *n, const vox_int *domain);
VOX_API vox_int vox_set_num_threads_local_(const vox_int *n);
VOX_API vox_int VOX_SET_NUM_THREADS_LOCAL(const vox_int *n);
VOX_API vox_int vox_get_max_threads_(void);
VOX_API vox_int VOX_GET_MAX_THREADS(void);
VOX_API vox_int vox_domain_get_max_threads_(const vox_int *domain);
VOX_API vox_int VOX_DOMAIN_GET_MAX_THREADS(const vox_int *domain);
VOX_API void vox_set_dynamic_(const vox_int *flag);
VOX_API void VOX_SET_DYNAMIC(const vox_int *flag);
VOX_API vox_int vox_get_dynamic_(void);
VOX_API vox_int VOX_GET_DYNAMIC(void);
VOX_API void vox_mpi_safe_(const vox_int *flag);
VOX_API void VOX_MPI_SAFE(const vox_int *flag);
VOX_API void vox_set_num_stripes_(const vox_int *n);
VOX_API void VOX_SET_NUM_STRIPES(const vox_int *n);
VOX_API vox_int vox_get_num_stripes_(void);
VOX_API vox_int VOX_GET_NUM_STRIPES(void);
VOX_API void vox_free_buffers_(void);
VOX_API void VOX_FREE_BUFFERS(void);
VOX_API void vox_thread_free_buffers_(void);
VOX_API void VOX_THREAD_FREE_BUFFERS(void);
VOX_API vox_int vox_disable_fast_mm_(void);
VOX_API vox_int VOX_DISABLE_FAST_MM(void);
VOX_API int64_t vox_mem_stat_(vox_int *count);
VOX_API int64_t VOX_MEM_STAT(vox_int *count);
VOX_API int64_t vox_peak_mem_usage_(const vox_int *mode);
VOX_API int64_t VOX_PEAK_MEM_USAGE(const vox_int *mode);
VOX_API vox_int vox_verbose_(const vox_int *mode);
VOX_API vox_int VOX_VERBOSE(const vox_int *mode);
VOX_API vox_int vox_verbose_output_file_(const char *name, size_t name_length);
VOX_API vox_int VOX_VERBOSE_OUTPUT_FILE(const char *name, size_t name_length);
VOX_API void vox_get_cpu_clocks_(uint64_t *clocks);
VOX_API void VOX_GET_CPU_CLOCKS(uint64_t *clocks);
VOX_API double vox_get_clocks_frequency_(void);
VOX_API double VOX_GET_CLOCKS_FREQUENCY(void);
VOX_API double vox_get_cpu_frequency_(void);
VOX_API double VOX_GET_CPU_FREQUENCY(void);
VOX_API double vox_get_max_cpu_frequency_(void);
VOX_API double VOX_GET_MAX_CPU_FREQUENCY(void);
VOX_API void vox_get_version_string_(char *buffer, size_t length);
VOX_API void VOX_GET_VERSION_STRING(char *buffer, size_t length);

/*
 * The service layer by its own names
 *
 * What the library's routines themselves call. The functions above are these under the names that
 * programs use; a program needs the rest only to extend the library.
 */

/* Processor: see vox_get_cpu_type. vox_serv_cpu_detect returns the chosen type, 0 or 2 to 7. */
VOX_API int vox_serv_cpu_detect(void);
VOX_API int vox_serv_get_cpu_type(int reevaluate);
VOX_API int vox_serv_enable_instructions(int level);
/* 1 when the processor is of the supported vendor, by CPUID alone. */
VOX_API int vox_serv_quarn_cpu_true(void);
/* The same under the reproducibility branch: 1 for every forced branch but COMPATIBLE, which gives 0. */
VOX_API int vox_serv_quarn_cpu(void);
/* The tiers that the ceiling leaves enabled: 1 or 0. */
VOX_API int vox_serv_is_sse4_2_enabled(void);
VOX_API int vox_serv_is_avx_enabled(void);
VOX_API int vox_serv_is_avx2_enabled(void);
VOX_API int vox_serv_is_avx512_enabled(void);
VOX_API int vox_serv_is_avx512_zel_enabled(void);
VOX_API int vox_serv_cbwr_set(int mode);
VOX_API int vox_serv_cbwr_get(int what);
VOX_API int vox_serv_cbwr_get_nolock(int what);
VOX_API int vox_serv_cbwr_get_auto_branch(void);
VOX_API int vox_serv_get_microarchitecture(void);
/* Predicates of the processor, for choices of tuning: 1 or 0. */
VOX_API int vox_serv_cpu_is_small_core(void);
VOX_API int vox_serv_cpu_is_zel(void);
VOX_API int vox_serv_cpu_is_zel_e1(void);
VOX_API int vox_serv_cpu_is_zen(void);
VOX_API int vox_serv_cpu_has_split_512(void); /* 512-bit operations take two passes */
VOX_API int vox_serv_cpu_is_virtual(void);    /* under a hypervisor */

/* Spin lock on a 32-bit word: 0 free, 1 taken. trylock returns 1 when it took the lock. cmpxchg
 * returns the value found, having stored `desired` if that was `expected`. */
VOX_API void vox_serv_lock(int *word);
VOX_API void vox_serv_unlock(int *word);
VOX_API int vox_serv_trylock(int *word);
VOX_API int vox_serv_cmpxchg(int *word, int expected, int desired);
VOX_API void vox_serv_thread_yield(void);
/* Brackets in which a thread checker does not report races on the given bytes: a dispatch slot may be
 * filled by two threads at once, which store the same pointer. */
VOX_API void vox_serv_inspector_suppress(const volatile void *address, size_t bytes);
VOX_API void vox_serv_inspector_unsuppress(const volatile void *address, size_t bytes);

/* Errors. vox_serv_xerbla: every report of the library; a null name or code is ignored. */
VOX_API void vox_serv_xerbla(const char *name, const vox_int *code, int name_length);
VOX_API void vox_serv_default_xerbla(const char *name, const vox_int *code, int name_length);
/* The handler through which C interface routines report: passes on to the exported xerbla. */
VOX_API void cdecl_xerbla(const char *name, const vox_int *code, int name_length);
VOX_API vox_xerbla_handler vox_serv_set_xerbla(vox_xerbla_handler handler);
/* Registers a handler only when none is registered. */
VOX_API void vox_serv_set_xerbla_interface(vox_xerbla_handler handler);
/* 1 when the pointer is null, which check_ptr reports as out of memory; 0 otherwise. */
VOX_API int vox_serv_check_ptr(const void *pointer, const char *name);
VOX_API int vox_serv_check_ptr_and_warn(const void *pointer, const char *name);

/* Messages of the catalogue vox_msg.cat, with built-in texts, and literal formats, each with a
 * newline and flushed. stream 1: standard error, or standard output if that is closed; other
 * values: standard output. A literal format needs at least one argument, or nothing is printed. */
VOX_API void vox_serv_print(int stream, int number, int argument_count, ...);
VOX_API void vox_serv_format_print(int stream, const char *format, int argument_count, ...)
    VOX_FORMAT(printf, 2, 4);
VOX_API void vox_serv_file_format_print(FILE *file, const char *format, int argument_count, ...)
    VOX_FORMAT(printf, 2, 4);
/* Message `number` in a buffer of the library that the next call, of any thread, overwrites. */
VOX_API const char *vox_serv_get_msg(int number, ...);

VOX_API int vox_serv_progress(const vox_int *thread, const vox_int *step, const char *stage,
                              int stage_length);
VOX_API int vox_serv_default_progress(const vox_int *thread, const vox_int *step, const char *stage,
                                      int stage_length);
VOX_API vox_progress_handler vox_serv_set_progress(vox_progress_handler handler);
VOX_API void vox_serv_set_progress_interface(vox_progress_handler handler);
VOX_API void vox_serv_exit(int status);
VOX_API void vox_serv_set_exit_handler(vox_exit_handler handler);

/* 1 when the first characters are equal but for the case of a to z; 0 otherwise, or for null. */
VOX_API int vox_serv_lsame(const char *a, const char *b);

/* Bounded string and memory functions: 0, or a constraint code after a call of the handler with a
 * message, a null pointer and the code. At most 4096 characters and 0x10000000 bytes. strnlen_s:
 * the length, 0 after an error. A failed copy leaves an empty string or zeros once dest and dmax
 * are good. The formatted ones: as the standard functions, -1 for null pointers and empty buffers;
 * text that does not fit is cut and terminated. */
enum {
    VOX_CONSTRAINT_NULL = 400,
    VOX_CONSTRAINT_ZERO_LENGTH = 401,
    VOX_CONSTRAINT_TOO_LONG = 403,
    VOX_CONSTRAINT_OVERLAP = 404,
    VOX_CONSTRAINT_NO_SPACE = 406
};
typedef void (*vox_constraint_handler)(const char *message, void *pointer, int error);
VOX_API size_t vox_serv_strnlen_s(const char *s, size_t dmax);
VOX_API int vox_serv_strncpy_s(char *dest, size_t dmax, const char *src, size_t slen);
VOX_API int vox_serv_memcpy_s(void *dest, size_t dmax, const void *src, size_t smax);
VOX_API int vox_serv_vsprintf_s(char *s, size_t n, const char *format, va_list arguments)
    VOX_FORMAT(printf, 3, 0);
VOX_API int vox_serv_vsnprintf_s(char *s, size_t n, const char *format, va_list arguments)
    VOX_FORMAT(printf, 3, 0);
VOX_API int vox_serv_sprintf_s(char *s, size_t n, const char *format, ...) VOX_FORMAT(printf, 3, 4);
VOX_API int vox_serv_snprintf_s(char *s, size_t n, const char *format, ...)
    VOX_FORMAT(printf, 3, 4);
VOX_API int vox_serv_printf_s(const char *format, ...) VOX_FORMAT(printf, 1, 2);
VOX_API int vox_serv_fprintf_s(FILE *file, const char *format, ...) VOX_FORMAT(printf, 2, 3);
VOX_API int vox_serv_fprintf_stdout_s(const char *format, ...) VOX_FORMAT(printf, 1, 2);
VOX_API int vox_serv_fprintf_stderr_s(const char *format, ...) VOX_FORMAT(printf, 1, 2);
VOX_API int vox_serv_vfprintf_s(FILE *file, const char *format, va_list arguments)
    VOX_FORMAT(printf, 2, 0);
VOX_API int vox_serv_vfprintf_stdout_s(const char *format, va_list arguments)
    VOX_FORMAT(printf, 1, 0);
VOX_API int vox_serv_vfprintf_stderr_s(const char *format, va_list arguments)
    VOX_FORMAT(printf, 1, 0);
VOX_API int vox_serv_sscanf_s(const char *s, const char *format, ...) VOX_FORMAT(scanf, 2, 3);
VOX_API int vox_serv_fscanf_s(FILE *file, const char *format, ...) VOX_FORMAT(scanf, 2, 3);
VOX_API void vox_serv_ignore_handler_s(const char *message, void *pointer, int error);
VOX_API vox_constraint_handler
vox_serv_set_str_constraint_handler_s(vox_constraint_handler handler);
VOX_API vox_constraint_handler
vox_serv_set_mem_constraint_handler_s(vox_constraint_handler handler);

/* Threads. */
VOX_API void vox_serv_set_num_threads(int n);
VOX_API int vox_serv_domain_set_num_threads(int n, int domain);
VOX_API int vox_serv_set_num_threads_local(int n);
VOX_API int vox_serv_get_max_threads(void);
VOX_API int vox_serv_domain_get_max_threads(int domain);
VOX_API void vox_serv_set_dynamic(int flag);
VOX_API int vox_serv_get_dynamic(void);
VOX_API void vox_serv_mpi_safe(int flag);
VOX_API void vox_serv_set_num_stripes(int n);
VOX_API int vox_serv_get_num_stripes(void);
/* Processes per node as MPI runtimes publish it, -1 when unknown. */
VOX_API int vox_serv_mpi_get_ppn(void);
/* Physical cores, logical processors per core, logical processors usable by the process, and whether
 * cores have several logical processors. */
VOX_API int vox_serv_get_ncpus(void);
VOX_API int vox_serv_get_ncorespercpu(void);
VOX_API int vox_serv_get_nlogicalcores(void);
VOX_API int vox_serv_get_ht(void);
VOX_API int vox_serv_omp_in_parallel(void);
/* The part of 0 .. n-1 that thread *t of *threads takes: returns its start, stores its length.
 * nb: in whole blocks, the last thread taking the rest. str: rows of a triangle ('U' or 'L') of
 * order n, so that all parts have about the same area. */
VOX_API int64_t vox_serv_divbythreads(const int64_t *t, const int64_t *threads, const int64_t *n,
                                      int64_t *length);
VOX_API int64_t vox_serv_divbythreadsnb(const int64_t *t, const int64_t *threads, const int64_t *n,
                                        const int64_t *nb, int64_t *length);
VOX_API int64_t vox_serv_divbythreadstr(const int64_t *t, const int64_t *threads, const int64_t *n,
                                        const char *uplo, int64_t *length);

/* Memory. */
VOX_API void *vox_serv_malloc(size_t size, size_t alignment);
VOX_API void *vox_serv_calloc(size_t count, size_t size, size_t alignment);
VOX_API void *vox_serv_realloc(void *pointer, size_t size);
VOX_API void vox_serv_free(void *pointer);
/* Scratch memory, kept for the thread's next request. Released by the thread that took it. */
VOX_API void *vox_serv_allocate(size_t size, size_t alignment);
VOX_API void vox_serv_deallocate(void *pointer);
VOX_API void *vox_serv_iface_allocate(size_t size, size_t alignment);
VOX_API void vox_serv_iface_deallocate(void *pointer);
VOX_API void vox_serv_free_buffers(void);
VOX_API void vox_serv_thread_free_buffers(void);
VOX_API int vox_serv_disable_fast_mm(void);
VOX_API int vox_serv_get_fast_mm_status(void); /* 1: off */
VOX_API int64_t vox_serv_mem_stat(int *count);
VOX_API int64_t vox_serv_peak_mem_usage(int mode);
VOX_API int vox_serv_set_memory_limit(int kind, int64_t limit_mib);
/* Bytes that remain of the high-bandwidth budget, whether or not there is such memory: all ones
 * when unlimited, 0 when nothing remains. */
VOX_API uint64_t vox_serv_check_fast_memory_size(void);
/* Memory for generated code, at an address divisible by 64: writable until set_exec (0 on success),
 * executable from then on. Not part of vox_mem_stat. */
VOX_API void *vox_serv_jit_alloc(size_t size);
VOX_API int vox_serv_jit_set_exec(void *pointer);
VOX_API void vox_serv_jit_free(void *pointer);

/* Verbose mode, timers, version. */
VOX_API int *vox_serv_verbose_mode(void);
VOX_API int *vox_serv_iface_verbose_mode(void);
VOX_API int vox_serv_verbose(int mode);
VOX_API int vox_serv_verbose_output_file(const char *name);
VOX_API const char *vox_serv_verbose_output_file_mode(void);
VOX_API void vox_serv_print_verbose_info(int interface_kind, const char *call, double seconds);
VOX_API void vox_serv_iface_print_verbose_info(int interface_kind, const char *call,
                                               double seconds);
VOX_API double vox_serv_dsecnd(void);
VOX_API double vox_serv_iface_dsecnd(void);
VOX_API float vox_serv_second(void);
VOX_API void vox_serv_get_cpu_clocks(uint64_t *clocks);
VOX_API double vox_serv_get_clocks_frequency(void);
VOX_API double vox_serv_get_cpu_frequency(void);
VOX_API double vox_serv_get_max_cpu_frequency(void);
VOX_API void vox_serv_get_version(vox_version *version);
VOX_API void vox_serv_get_version_string(char *buffer, int length);
VOX_API void vox_serv_get_version_string_c(char *buffer, int length); /* terminated, for C */

#ifdef __cplusplus
}
#endif

#endif
