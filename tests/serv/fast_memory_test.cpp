// fast_memory_test.cpp - the binding to memkind, by means of stand-ins for it, and the budget.
#include "tests/serv/memory_support.hpp"

#include <cstdlib>
#include <dlfcn.h>
#include <string>

#include "serv/cpu_features.hpp"
#include "serv/memory.hpp"

namespace {

using namespace test;
using vox::fast_memory_binding;
using vox::fast_memory_state;

// Each directory holds one libmemkind.so.
const std::string standins = STANDIN_DIRECTORY;
const std::string complete = standins + "/complete", newer = standins + "/newer",
                  old = standins + "/old", unversioned = standins + "/unversioned",
                  no_allocate = standins + "/no_allocate", no_free = standins + "/no_free",
                  empty = standins;
constexpr char name[] = "libmemkind.so";

TEST(FastMemory, NeedsAllFourFeatures) {
    EXPECT_TRUE(vox::may_have_fast_memory(vox::avx512_zel_group));
    for (int bit : {27, 32, 33, 34})
        EXPECT_FALSE(vox::may_have_fast_memory(~(uint64_t(1) << bit))) << bit;
}

// Binding loads libraries, so each case has a process: TEST_NAME, TEST_FIRST and TEST_SECOND in,
// state and the directory of what was bound out.
CHILD(print_binding) {
    const fast_memory_binding b = vox::bind_memkind(
        std::getenv("TEST_NAME"), std::getenv("TEST_FIRST"), std::getenv("TEST_SECOND"));
    Dl_info info{};
    if (b.allocate)
        dladdr(reinterpret_cast<void *>(b.allocate), &info);
    std::string path = info.dli_fname ? info.dli_fname : "";
    std::printf("%d %s", int(b.state), path.substr(0, path.rfind('/')).c_str());
    CHECK((b.state == fast_memory_state::available) == (b.allocate && b.release));
    CHECK(dlerror() == nullptr); // nothing is left for the program to find
}

TEST(FastMemory, TheFirstLibraryThatOpensDecides) {
    using enum fast_memory_state;
    const struct {
        std::string library, first, second, loader_path;
        fast_memory_state state;
        std::string directory;
    } cases[] = {
        {name, complete, newer, "", available, complete},
        {name, newer, complete, "", available, newer},
        {name, empty, newer, "", available, newer},
        {name, empty, empty, newer, available, newer},
        {name, "", "", newer, available, newer},
        {name, complete, "", newer, available, complete},
        {name, "", "", "", not_found, ""},
        {name, empty, empty, empty, not_found, ""},
        {name, old, complete, complete, too_old, ""},
        {name, unversioned, complete, "", too_old, ""},
        {name, no_allocate, complete, "", incomplete, ""},
        {name, no_free, complete, "", incomplete, ""},
        {newer + "/" + name, complete, complete, complete, available, newer},
        {empty + "/" + name, complete, complete, complete, not_found, ""},
        {"newer/" + std::string(name), standins, standins, "", not_found, ""},
        {name, std::string(5000, 'x'), newer, "", available, newer},
    };
    for (const auto &c : cases)
        expect_said(print_binding, "LD_LIBRARY_PATH", {c.loader_path},
                    std::to_string(int(c.state)) + " " + c.directory,
                    {{"TEST_NAME", c.library}, {"TEST_FIRST", c.first}, {"TEST_SECOND", c.second}});
}

// The configuration of a process that found the stand-in of this directory.
void configure_with(const std::string &directory) {
    vox::configure_memory_with(vox::bind_memkind(name, directory.c_str(), nullptr));
}

CHILD(configure_twice) {
    configure_with(std::getenv("TEST_FIRST"));
    configure_with(std::getenv("TEST_FIRST")); // not said again
    vox_free(vox_malloc(100, 64));             // from the C library
}

TEST(FastMemory, OldLibrariesAreNamedInVerboseModeOnly) {
    expect_said(configure_twice, "TEST_FIRST", {old, unversioned},
                "Minimal supported version of the memkind library is 1.1.0\n",
                {{"VOX_VERBOSE", "1"}});
    expect_said(configure_twice, "TEST_FIRST", {no_free, empty, complete}, "",
                {{"VOX_VERBOSE", "1"}});
    expect_said(configure_twice, "TEST_FIRST", {old, unversioned}, "");
}

// The stand-in's variables.
template <class T>
T &standin(const char *variable) {
    T *const address = static_cast<T *>(dlsym(RTLD_DEFAULT, variable));
    CHECK(address); // global binding
    return *address;
}
int blocks() { return standin<int>("standin_blocks"); }

constexpr size_t MiB = 1 << 20, header = 32;
// The size that makes a raw block of so many bytes.
constexpr size_t size_for_raw(size_t raw) { return raw - header - 64 - 24; }

CHILD_TEST(FastMemory, BlocksComeAndGo) {
    configure_with(complete);
    void *p = vox_malloc(1000, 64), *const zeroed = vox_calloc(1000, 10, 128);
    CHECK(blocks() == 2 && is_zero(zeroed, 10000));
    fill(p, 1000, 1);
    p = vox_realloc(p, 100000);
    CHECK(p && blocks() == 2 && is_filled(p, 1000, 1) && is_aligned(p, 64));
    fill(p, 100000, 2);
    p = vox_realloc(p, 500);
    CHECK(p && blocks() == 2 && is_filled(p, 500, 2));
    void *const scratch = vox_serv_allocate(5000, 128);
    CHECK(blocks() == 3);
    vox_serv_deallocate(scratch);
    CHECK((held_now() ==
           held{plain(500).bytes + plain(10000, 128).bytes + pooled(5000, 128).bytes, 3}));
    vox_free_buffers();
    vox_free(p);
    vox_free(zeroed);
    CHECK(blocks() == 0 && (held_now() == held{0, 0}));
}

CHILD_TEST(FastMemory, HasPagesOfTwoSizes) {
    configure_with(complete);
    const auto &alignment = standin<size_t>("standin_last_alignment");
    int &refused = standin<int>("standin_refused_kinds");
    void *const large = vox_malloc(1000, 64);
    CHECK(blocks() == 1 && alignment == 2 * MiB);
    refused = 1 << 2; // 2 MiB
    void *small = vox_malloc(1000, 64);
    CHECK(blocks() == 2 && alignment == 4096);
    fill(small, 1000, 1);
    refused = 1 << 2 | 1 << 1;
    void *const ordinary = vox_malloc(1000, 64);
    CHECK(ordinary && blocks() == 2);
    small = vox_realloc(small, 9000); // moves to ordinary memory
    CHECK(small && blocks() == 1 && is_filled(small, 1000, 1));
    for (void *p : {large, small, ordinary})
        vox_free(p);
    CHECK(blocks() == 0);
}

CHILD_TEST(FastMemory, IsUsedWithinItsBudget, {"VOX_FAST_MEMORY_LIMIT", "3"}) {
    configure_with(complete);
    auto left = vox_serv_check_fast_memory_size;
    CHECK(left() == 3 * MiB);
    void *const all = vox_malloc(size_for_raw(3 * MiB), 64); // at the budget: too large
    CHECK(all && blocks() == 0 && left() == 3 * MiB);
    void *const most = vox_malloc(size_for_raw(3 * MiB - 1000), 64);
    CHECK(most && blocks() == 1 && left() == 1000);
    CHECK(standin<size_t>("standin_last_size") == 3 * MiB - 1000);
    void *const rest = vox_malloc(size_for_raw(999), 64);
    CHECK(rest && blocks() == 2 && left() == 1);
    vox_set_memory_limit(VOX_MEM_FAST, 1); // below what is held
    CHECK(left() == 0);
    void *const ordinary = vox_malloc(1, 64);
    CHECK(ordinary && blocks() == 2);
    for (void *p : {all, most, rest, ordinary})
        vox_free(p);
    CHECK(blocks() == 0 && left() == MiB);
    standin<int>("standin_refused_kinds") = ~0; // a failed attempt costs nothing
    vox_free(vox_malloc(1000, 64));
    CHECK(left() == MiB);
}

CHILD_TEST(FastMemory, NeedHaveNoLimit) {
    configure_with(complete);
    CHECK(vox_serv_check_fast_memory_size() == UINT64_MAX);
    void *const p = vox_malloc(100 * MiB, 64);
    CHECK(p && blocks() == 1 && vox_serv_check_fast_memory_size() == UINT64_MAX);
    vox_set_memory_limit(VOX_MEM_FAST, 1000); // what is held counts from now on
    CHECK(vox_serv_check_fast_memory_size() == 900 * MiB - (64 + 24 + header));
    vox_free(p);
}

CHILD_TEST(FastMemory, HooksComeFirst) {
    static int calls = 0;
    i_malloc = [](size_t size) { return ++calls, std::malloc(size); };
    configure_with(complete);
    void *const p = vox_malloc(100, 64);
    CHECK(p && calls == 1 && blocks() == 0);
    vox_free(p);
    const vox::memory_facts facts = vox::memory_facts_now();
    CHECK(facts.hooked && facts.fast == fast_memory_state::available);
}

CHILD_TEST(MemoryFacts, SayWhatIsInForce, {"VOX_FAST_MEMORY_LIMIT", "7"}) {
    vox::memory_facts now = vox::memory_facts_now();
    const bool many_core = vox::may_have_fast_memory(vox::features());
    CHECK(many_core == (now.fast != fast_memory_state::other_processor));
    CHECK(!now.hooked && now.pool == vox::pool_state::in_use && !now.peak.tracked);
    CHECK(now.fast_limit == 7 << 20 && now.fast_used == 0 && now.blocks_held == 0);
    vox_peak_mem_usage(1);
    void *const p = vox_malloc(100, 64);
    vox_free(vox_malloc(200, 64));
    vox_disable_fast_mm();
    now = vox::memory_facts_now();
    CHECK(now.pool == vox::pool_state::off_by_call);
    CHECK(now.bytes_held == plain(100).bytes && now.blocks_held == 1 && now.peak.tracked);
    CHECK(now.peak.peak_blocks == 2 && now.peak.blocks == 1);
    vox_free(p);
}

} // namespace
