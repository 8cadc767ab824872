// vox-run.cpp - runs a program that was built with another BLAS and LAPACK on this library.
//
//   vox-run [--threads N] [--path P] [--verbose] [--info] PROGRAM [ARGUMENT...]
//
// The library is preloaded (LD_PRELOAD), so its symbols come before those of the libraries that the program
// was linked with; routines that it does not have stay theirs. Everything else is what the environment
// variables of docs/environment.md do; the options set those that `help` below names. The program takes the
// place of this process, so its status and its signals are its own.
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "tools/program_file.hpp"
#include "vox/service.h"

namespace {

constexpr char usage[] =
    "usage: vox-run [--threads N] [--path P] [--verbose] [--info] PROGRAM [ARGUMENT...]";

constexpr char help[] = R"(
Runs PROGRAM on this library's BLAS and LAPACK without rebuilding it. The vendor test is opened, so that any
processor gets the best code path that it can run; VOX_CPU_VENDOR, if it is set, stands.

  --threads N   threads that a call may use (sets VOX_NUM_THREADS)
  --path P      runs the code path P: def, ssse3, sse42, avx, avx2, avx512_zel or avx512; or cnr, the same bits on
                every processor (sets VOX_DEBUG_CPU_TYPE or VOX_CBWR)
  --verbose     prints every call that reaches the library, with its time (sets VOX_VERBOSE=1); if no line
                comes, no call did
  --info        says first what will run: library, code path, threads, the program and what it is linked with; and
                at the end whether anything was computed by the library

Where the library cannot serve a program, which then runs without it, a line on standard error says so: a
program that is linked statically, has a BLAS linked in, has rights of its own, counts with 64-bit integers or is
for other processors. A program that has loaded a BLAS under names of its own, as Python packages bring it, is told
when it ends.

The status is PROGRAM's; 2 for a wrong option, 126 if PROGRAM cannot be executed, 127 if there is none.
)";

enum { wrong_usage = 2, cannot_execute = 126, not_found = 127 };

[[noreturn]] VOX_FORMAT(printf, 2, 3) void stop(int status, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::fprintf(stderr, "vox-run: ");
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    std::exit(status);
}

void set(const char *variable, const char *value) {
    if (setenv(variable, value, 1) != 0)
        stop(cannot_execute, "cannot set %s: %s", variable, std::strerror(errno));
}

void set_threads(const char *text) {
    constexpr long most = 65536;
    char *end;
    errno = 0;
    const long n = std::strtol(text, &end, 10);
    if (end == text || *end || errno || n < 1 || n > most)
        stop(wrong_usage, "--threads: \"%s\" is no number from 1 to %ld", text, most);
    set("VOX_NUM_THREADS", std::to_string(n).c_str());
}

// The question whether the processor has what a path needs is the library's to answer.
void set_path(const char *name) {
    static constexpr struct {
        char name[12];
        int type;
    } paths[] = {{"def", VOX_CPU_DEF},      {"ssse3", VOX_CPU_SSSE3},
                 {"sse42", VOX_CPU_SSE42},  {"avx", VOX_CPU_AVX},
                 {"avx2", VOX_CPU_AVX2},    {"avx512_zel", VOX_CPU_AVX512_ZEL},
                 {"avx512", VOX_CPU_AVX512}};
    if (std::strcmp(name, "cnr") == 0) {
        unsetenv("VOX_DEBUG_CPU_TYPE");
        set("VOX_CBWR", "COMPATIBLE");
        return;
    }
    for (const auto &path : paths) {
        if (std::strcmp(name, path.name) != 0)
            continue;
        unsetenv("VOX_CBWR");
        set("VOX_DEBUG_CPU_TYPE", std::to_string(path.type).c_str());
        if (vox_get_cpu_type(1) != path.type)
            stop(wrong_usage, "--path: this processor cannot run the code path %s", name);
        return;
    }
    stop(wrong_usage,
         "--path: \"%s\" is none of def, ssse3, sse42, avx, avx2, avx512_zel, avx512, cnr", name);
}

// The file that serves this process will serve the program.
std::string library_file() {
    Dl_info info;
    char path[PATH_MAX];
    if (!dladdr(reinterpret_cast<void *>(&vox_explain), &info) || !realpath(info.dli_fname, path))
        stop(cannot_execute, "cannot find the library's file");
    if (std::strpbrk(path, " :\t\n"))
        stop(cannot_execute, "cannot preload %s: no blank or colon may be in its path", path);
    return path;
}

// The library, what reports on it when the program ends, and what is preloaded anyway.
void preload(const std::string &library) {
    std::string list = library;
    const std::string report = library.substr(0, library.rfind('/')) + "/libvox-run.so";
    if (access(report.c_str(), R_OK) == 0)
        list += ":" + report;
    const char *const others = std::getenv("LD_PRELOAD");
    if (others && *others)
        list += ":" + std::string(others);
    set("LD_PRELOAD", list.c_str());
}

void print_fact(void *, const char *section, const char *key, const char *value) {
    static constexpr struct {
        const char *section, *key, *shown;
    } facts[] = {{"version", "version", "version"},
                 {"code path", "code path", "code path"},
                 {"code path", "why", "  because"},
                 {"threads", "BLAS", "threads"}};
    for (const auto &fact : facts)
        if (std::strcmp(section, fact.section) == 0 && std::strcmp(key, fact.key) == 0)
            std::fprintf(stderr, "vox-run: %-11s %s\n", fact.shown, value);
}

// What the library will find out about itself in the program, from a process of its own: asking starts
// the OpenMP runtime, which must not have run before in the process that becomes the program.
void print_info(const std::string &library, const program_file &program) {
    std::fprintf(stderr, "vox-run: %-11s %s\n", "library", library.c_str());
    const pid_t child = fork();
    if (child == 0) {
        vox_explain(print_fact, nullptr);
        std::exit(0);
    }
    if (child > 0)
        waitpid(child, nullptr, 0);
    const bool script = program.image != program.path;
    std::fprintf(stderr, "vox-run: %-11s %s%s%s\n", "program", program.path.c_str(),
                 script ? ", run by " : "", script ? program.image.c_str() : "");
    const std::string linked = linked_libraries(program);
    std::fprintf(stderr, "vox-run: %-11s %s\n", "linked with",
                 linked.empty() ? "no BLAS; one that it loads later is replaced all the same"
                                : linked.c_str());
}

[[noreturn]] void execute(const program_file &program, char **arguments) {
    execv(program.path.c_str(), arguments);
    if (errno == ENOEXEC &&
        program.image == "/bin/sh") // a script without a first line is the shell's
        execvp(program.path.c_str(), arguments);
    stop(errno == ENOENT ? not_found : cannot_execute, "%s: %s", arguments[0],
         std::strerror(errno));
}

} // namespace

int main(int argc, char **argv) {
    bool info = false;
    const char *threads = nullptr, *path = nullptr;
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        const std::string option = argv[i];
        if (option == "--") {
            ++i;
            break;
        }
        if (option == "--help") {
            std::printf("%s\n%s", usage, help);
            return 0;
        }
        if (option == "--info")
            info = true;
        else if (option == "--verbose")
            set("VOX_VERBOSE", "1");
        else if (option != "--threads" && option != "--path")
            stop(wrong_usage, "%s is no option; vox-run --help lists them", argv[i]);
        else if (++i == argc)
            stop(wrong_usage, "%s needs a value", option.c_str());
        else
            (option == "--threads" ? threads : path) = argv[i];
    }
    if (i == argc)
        stop(wrong_usage, "no program is named; vox-run --help says more");

    setenv("VOX_CPU_VENDOR", "ANY", 0);
    if (threads)
        set_threads(threads);
    if (path)
        set_path(path);

    const program_file program = find_program(argv[i]);
    if (program.error)
        stop(program.error == ENOENT || program.error == ENOTDIR ? not_found : cannot_execute,
             "%s: %s", argv[i], std::strerror(program.error));
    const std::string library = library_file();
    if (info) {
        print_info(library, program);
        set("VOX_RUN_INFO", std::to_string(getpid()).c_str());
    }
    const service service = serve(program, library.c_str());
    if (!service.obstacle.empty())
        std::fprintf(stderr, "vox-run: %s %s\n", program.image.c_str(), service.obstacle.c_str());
    if (service.preload)
        preload(library);
    execute(program, argv + i);
}
