// program_file.cpp - see program_file.hpp.
#include "tools/program_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

#include "tools/elf_file.hpp"

namespace {

// 0 if the file can be executed, else the reason.
int executable_error(const std::string &path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return errno;
    if (S_ISDIR(status.st_mode))
        return EISDIR;
    return access(path.c_str(), X_OK) == 0 ? 0 : errno;
}

program_file search(const std::string &name) {
    program_file result;
    if (name.find('/') != std::string::npos) {
        result.error = executable_error(name);
        if (!result.error)
            result.path = name;
        return result;
    }
    const char *const path = std::getenv("PATH");
    std::istringstream directories(path ? path : "/bin:/usr/bin");
    result.error = ENOENT;
    for (std::string directory; std::getline(directories, directory, ':');) {
        const std::string candidate = (directory.empty() ? "." : directory) + "/" + name;
        const int error = executable_error(candidate);
        if (!error)
            return {candidate, 0, ""};
        if (error == EACCES)
            result.error = EACCES;
    }
    return result;
}

// The interpreter that the first line of a script names ("#!/usr/bin/env python3": python3); the shell for a
// script without such a line. Empty if it cannot be found.
std::string interpreter_of(const std::string &script) {
    std::ifstream file(script);
    std::string line;
    std::getline(file, line);
    if (line.rfind("#!", 0) != 0)
        return "/bin/sh";
    std::istringstream words(line.substr(2));
    std::string word;
    words >> word;
    if (word.size() >= 4 && word.compare(word.size() - 4, 4, "/env") == 0)
        while (words >> word)
            if (word[0] != '-' && word.find('=') == std::string::npos)
                return search(word).path;
    return word;
}

// Whether the process will have rights that its caller lacks: the dynamic linker then ignores LD_PRELOAD.
bool gains_rights(const std::string &path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return false;
    return (status.st_mode & S_ISUID && status.st_uid != getuid()) ||
           (status.st_mode & S_ISGID && status.st_gid != getgid()) ||
           (getuid() != 0 && getxattr(path.c_str(), "security.capability", nullptr, 0) > 0);
}

// Routines of linear algebra, in the form in which compilers call them. xerbla is meant to be replaced.
bool is_routine(const std::string &name) {
    if (name == "xerbla_" || name.rfind("vox_", 0) == 0)
        return false;
    return name.back() == '_' || name.rfind("cblas_", 0) == 0 || name.rfind("LAPACKE_", 0) == 0;
}

std::vector<std::string> routines_in_both(const elf_file &program, const elf_file &library) {
    std::vector<std::string> common;
    std::set_intersection(program.functions.begin(), program.functions.end(),
                          library.functions.begin(), library.functions.end(),
                          std::back_inserter(common));
    common.erase(std::remove_if(common.begin(), common.end(),
                                [](const auto &name) { return name.empty() || !is_routine(name); }),
                 common.end());
    return common;
}

std::string describe(const std::vector<std::string> &routines) {
    if (routines.empty())
        return "";
    const bool gemm = std::find(routines.begin(), routines.end(), "dgemm_") != routines.end();
    const std::string others = std::to_string(routines.size() - 1);
    return (gemm ? "dgemm_" : routines.front()) + (others == "0" ? "" : " and " + others + " more");
}

// Whether a library is a BLAS or LAPACK with 64-bit integers, by the name that Debian and others give it. Its
// routines may have the same names.
bool has_wide_integers(const std::string &library) {
    for (const char *const name :
         {"libblas64", "libcblas64", "liblapack64", "libopenblas64", "libblis64"})
        if (library.rfind(name, 0) == 0)
            return true;
    return false;
}

} // namespace

program_file find_program(const std::string &name) {
    program_file program = search(name);
    program.image = program.path;
    constexpr int most_scripts = 5; // as many as the kernel follows
    for (int i = 0; i < most_scripts && !program.image.empty() &&
                    read_elf(program.image.c_str()).kind == elf_file::format::other;
         ++i)
        program.image = interpreter_of(program.image);
    return program;
}

service serve(const program_file &program, const char *library) {
    const elf_file image = read_elf(program.image.c_str());
    if (image.kind == elf_file::format::other)
        return {};
    if (image.kind == elf_file::format::foreign)
        return {false, "is not a program for 64-bit x86: it runs without the library"};
    if (gains_rights(program.image))
        return {
            true,
            "runs with rights of its own (set-user-ID, set-group-ID or capabilities), with which "
            "nothing is preloaded: it runs without the library"};
    for (const std::string &needed : image.needed)
        if (has_wide_integers(needed))
            return {false, "calls " + needed +
                               " with integers of 64 bits, and this library's have 32: it runs "
                               "without the library"};
    const std::string own = describe(routines_in_both(image, read_elf(library)));
    if (!image.has_interpreter)
        return {true, "is linked statically" + (own.empty() ? own : ", with its own " + own) +
                          ": it runs without the library"};
    if (!own.empty())
        return {true, "brings its own " + own + ": these calls do not reach the library"};
    return {};
}

std::string linked_libraries(const program_file &program) {
    std::string list;
    for (const std::string &needed : read_elf(program.image.c_str()).needed)
        for (const char *const word : {"blas", "lapack", "blis", "atlas", "libvox"})
            if (needed.find(word) != std::string::npos) {
                list += (list.empty() ? "" : " ") + needed;
                break;
            }
    return list;
}
