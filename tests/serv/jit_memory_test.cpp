// jit_memory_test.cpp - memory for generated code is writable or executable, and never both.
#include "tests/serv/memory_support.hpp"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace {

using namespace test;

// The permissions of the mapping that holds the address, as /proc/self/maps prints them ("rw-p");
// empty when there is none.
std::string permissions(const void *address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        uintptr_t begin = 0, end = 0;
        char mode[5];
        const uintptr_t a = reinterpret_cast<uintptr_t>(address);
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, mode) == 3 && begin <= a &&
            a < end)
            return mode;
    }
    return "";
}

constexpr unsigned char return_42[] = {0xB8, 42, 0, 0, 0, 0xC3}; // mov eax, 42; ret

int call(void *code) { return reinterpret_cast<int (*)()>(code)(); }

TEST(JitMemory, IsWrittenThenExecutedAndNeverBothAtOnce) {
    for (size_t size : {6, 100, 4032, 4033, 4096, 1 << 20}) {
        SCOPED_TRACE(size);
        void *const code = vox_serv_jit_alloc(size);
        ASSERT_TRUE(code && is_aligned(code, 64));
        char *const last = static_cast<char *>(code) + size - 1;
        std::memset(code, 0xCC, size);
        std::memcpy(code, return_42, sizeof return_42);
        EXPECT_EQ(permissions(code), "rw-p");
        EXPECT_EQ(permissions(last), "rw-p");
        ASSERT_EQ(vox_serv_jit_set_exec(code), 0);
        EXPECT_EQ(permissions(code), "r-xp");
        EXPECT_EQ(permissions(last), "r-xp");
        EXPECT_EQ(call(code), 42);
        EXPECT_EQ(vox_serv_jit_set_exec(code), 0); // again changes nothing
        EXPECT_EQ(call(code), 42);
        vox_serv_jit_free(code);
        EXPECT_EQ(permissions(last), "");
    }
}

TEST(JitMemory, RefusesWhatCannotBe) {
    for (size_t size : {size_t(0), SIZE_MAX, SIZE_MAX - 64, SIZE_MAX - 4096 - 64, SIZE_MAX / 2})
        EXPECT_EQ(vox_serv_jit_alloc(size), nullptr) << size;
    EXPECT_NE(vox_serv_jit_set_exec(nullptr), 0);
    vox_serv_jit_free(nullptr);
    void *const code = vox_serv_jit_alloc(10);
    vox_serv_jit_free(code); // never made executable
    EXPECT_EQ(permissions(code), "");
}

} // namespace
