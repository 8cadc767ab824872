// Files of programs as vox-run reads them: this one, and damaged copies of it.
#include <algorithm>
#include <cstring>
#include <elf.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/temporary.hpp"
#include "tools/elf_file.hpp"

extern "C" void defined_in_this_program() {}

namespace {

// What is read of a file with these contents.
elf_file read_as_file(const std::string &contents) {
    const test::temporary_directory directory;
    const std::string path = directory / "copy";
    std::ofstream(path, std::ios::binary) << contents;
    return read_elf(path.c_str());
}

TEST(ElfFile, ShowsWhatAProgramDefines) {
    const elf_file program = read_elf("/proc/self/exe");
    EXPECT_EQ(program.kind, elf_file::format::native);
    EXPECT_TRUE(program.has_interpreter);
    EXPECT_TRUE(program.functions.count("defined_in_this_program"));
    EXPECT_FALSE(program.functions.count("memcpy")); // called, not defined
}

TEST(ElfFile, KnowsOtherFiles) {
    EXPECT_EQ(read_elf("/nowhere").kind, elf_file::format::other);
    EXPECT_EQ(read_elf("/").kind, elf_file::format::other);
    EXPECT_EQ(read_as_file("").kind, elf_file::format::other);
    EXPECT_EQ(read_as_file("#!/bin/sh\n").kind, elf_file::format::other);
    EXPECT_EQ(read_as_file("\177ELF").kind, elf_file::format::other);
}

TEST(ElfFile, SurvivesCutFiles) {
    const std::string whole = test::contents_of("/proc/self/exe");
    const elf_file program = read_as_file(whole);
    for (size_t size = 1; size < whole.size(); size += 1 + size / 7) {
        elf_file cut = read_as_file(whole.substr(0, size));
        cut.functions.erase("");
        EXPECT_TRUE(std::ranges::includes(program.functions, cut.functions)) << size;
    }
}

// Every 64-bit and 32-bit field of the header and of the section headers, with values at the ends of its range.
TEST(ElfFile, SurvivesWrongOffsets) {
    const std::string whole = test::contents_of("/proc/self/exe");
    Elf64_Ehdr header;
    std::memcpy(&header, whole.data(), sizeof header);
    const auto damage = [&](size_t offset) {
        for (const uint64_t value :
             {uint64_t(0), ~uint64_t(0), ~uint64_t(0) << 4, uint64_t(whole.size() - 1)}) {
            std::string copy = whole;
            std::memcpy(&copy[offset], &value, sizeof value);
            read_as_file(copy); // whatever is read, nothing beyond the file
        }
    };
    for (size_t offset = EI_NIDENT; offset < sizeof header; offset += 8)
        damage(offset);
    for (int i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr section;
        const size_t at = header.e_shoff + size_t(i) * sizeof section;
        std::memcpy(&section, &whole[at], sizeof section);
        if (section.sh_type == SHT_DYNSYM || section.sh_type == SHT_STRTAB)
            for (size_t field = 0; field < sizeof section; field += 8)
                damage(at + field);
    }
}

} // namespace
