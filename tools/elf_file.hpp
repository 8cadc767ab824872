// elf_file.hpp - what can be seen in a program's or library's file without running it: for which machine
// it is, whether the dynamic linker loads it, and which functions it defines itself.
#pragma once

#include <set>
#include <string>

struct elf_file {
    enum class format { other, foreign, native }; // no ELF file; not for 64-bit x86; for it
    format kind = format::other;
    bool has_interpreter = false;    // a program without one is linked statically
    std::set<std::string> functions; // of both symbol tables, as far as they have not been stripped
    std::set<std::string> needed;    // libraries, by the names under which they are looked for
};

// A file that cannot be read, or is damaged, gives what could be read of it.
elf_file read_elf(const char *path);
