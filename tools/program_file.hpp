// program_file.hpp - finds the program that a command starts, and says what keeps a preloaded library from
// serving it.
#pragma once

#include <string>

struct program_file {
    std::string path;  // what is executed; empty if there is nothing
    int error = 0;     // then why: ENOENT, EACCES, ...
    std::string image; // the ELF file that runs: the program, or the interpreter of a script
};

// As the shell does: a name with a slash is a path, any other is looked for along PATH. Scripts are followed.
program_file find_program(const std::string &name);

// Whether a preloaded library serves the program.
struct service {
    bool preload = true;  // false where preloading would do harm
    std::string obstacle; // why the program runs without the library or part of it; or empty
};

// library: the library's file, whose routines are looked for in the program.
service serve(const program_file &program, const char *library);

// The libraries of linear algebra that the program is linked with, by their names; or empty.
std::string linked_libraries(const program_file &program);
