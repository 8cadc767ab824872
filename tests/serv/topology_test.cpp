// topology_test.cpp - cores of machines that are not this one.
#include "serv/topology.hpp"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <vector>

#include "tests/support/temporary.hpp"
#include "vox/service.h"

namespace {

using namespace vox;

processor_mask mask_of(const std::vector<int> &processors) {
    processor_mask mask;
    for (int p : processors)
        mask.add(p);
    return mask;
}

std::vector<int> first(int count) {
    std::vector<int> result(size_t(count), 0);
    std::iota(result.begin(), result.end(), 0);
    return result;
}

// A machine made up by a test. `apic` describes each processor; a visit goes to the one that the
// mask was narrowed to.
struct synthetic {
    std::vector<apic_reading> apic;
    processor_mask process;
    int refused_processor = -1, allocations_left = 1000;
    processor_mask current = {};
    int live_blocks = 0, moves = 0;
};
synthetic *now = nullptr;

topology find(synthetic &s, bool visits, const char *cpuinfo, bool mask_known = true) {
    now = &s;
    s.current = s.process;
    const auto get_mask = [](int, processor_mask &mask) { return mask = now->current, true; };
    const auto set_mask = [](const processor_mask &mask) {
        ++now->moves;
        if (now->refused_processor >= 0 && mask == mask_of({now->refused_processor}))
            return false;
        now->current = mask;
        return true;
    };
    const auto read_apic = [] {
        int p = 0;
        while (!now->current.has(p))
            ++p;
        return now->apic.at(size_t(p));
    };
    const auto allocate = [](size_t bytes) -> void * {
        if (now->allocations_left-- <= 0)
            return nullptr;
        ++now->live_blocks;
        return std::malloc(bytes);
    };
    const auto release = [](void *block) {
        --now->live_blocks;
        std::free(block);
    };
    const machine m = {visits, get_mask, set_mask, read_apic, cpuinfo, allocate, release};
    topology result;
    {
        core_tables tables(m, mask_known ? s.process.count() : max_processors);
        result = find_topology(m, mask_known ? &s.process : nullptr, tables);
    }
    EXPECT_EQ(s.live_blocks, 0);
    EXPECT_TRUE(s.current == s.process) << "the mask was not put back";
    return result;
}

void expect(const topology &t, int logical, int cores, int threads_per_core, core_source source) {
    EXPECT_EQ(t.logical, logical);
    EXPECT_EQ(t.cores, cores);
    EXPECT_EQ(t.threads_per_core, threads_per_core);
    EXPECT_EQ(t.hyper_threading(), logical != cores);
    EXPECT_EQ(t.source, source);
}

// Packages of `cores` cores with `threads` threads each, numbered as the identifiers are built:
// package, core, thread, each field rounded up to `core_space` and `threads` places.
std::vector<apic_reading> packages(int count, int cores, int core_space, int threads) {
    std::vector<apic_reading> result;
    for (int p = 0; p < count; ++p)
        for (int c = 0; c < cores; ++c)
            for (int t = 0; t < threads; ++t)
                result.push_back(
                    {((p * core_space + c) * threads + t) & 255, core_space * threads, core_space});
    return result;
}

TEST(TopologyByVisits, TellsCoresFromThreads) {
    const struct {
        const char *name;
        std::vector<apic_reading> apic;
        std::vector<int> mask;
        int cores, threads_per_core;
    } cases[] = {
        {"one core", packages(1, 1, 1, 1), first(1), 1, 1},
        {"four cores", packages(1, 4, 4, 1), first(4), 4, 1},
        {"four cores, two threads each", packages(1, 4, 4, 2), first(8), 4, 2},
        {"six cores in a space of eight", packages(1, 6, 8, 2), first(12), 6, 2},
        {"two packages", packages(2, 6, 8, 2), first(24), 12, 2},
        {"four threads per core", packages(2, 4, 4, 4), first(32), 8, 4},
        {"one thread of each core", packages(1, 4, 4, 2), {0, 2, 4, 6}, 4, 1},
        {"both threads of one core, one of another", packages(1, 4, 4, 2), {2, 3, 5}, 2, 2},
        {"both threads of one core", packages(1, 4, 4, 2), {4, 5}, 1, 2},
        {"a hole over a package", packages(2, 2, 2, 2), {0, 1, 6}, 2, 2},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        synthetic s{c.apic, mask_of(c.mask)};
        expect(find(s, true, "/nonexistent"), int(c.mask.size()), c.cores, c.threads_per_core,
               core_source::cpuid);
    }
}

// A temporary file with a cpuinfo in it.
class cpuinfo_file {
  public:
    explicit cpuinfo_file(const std::string &text) { std::ofstream(path_) << text; }
    const char *path() const { return path_.c_str(); }

  private:
    const test::temporary_directory directory_;
    const std::string path_ = directory_ / "cpuinfo";
};

std::string record(int processor, int package, int core) {
    return "processor\t: " + std::to_string(processor) + "\nvendor_id\t: Somebody\n" +
           "physical id\t: " + std::to_string(package) +
           "\nsiblings\t: 8\ncore id\t\t: " + std::to_string(core) +
           "\ncpu cores\t: 4\nflags\t\t: " + std::string(3000, 'x') + "\n\n";
}

std::string plain_record(int processor) {
    return "processor\t: " + std::to_string(processor) + "\nmodel name\t: core id\t: 3\n\n";
}

// One package, its cores chosen by the processor's number.
template <class Core>
std::string records(int count, Core core_of) {
    std::string all;
    for (int p = 0; p < count; ++p)
        all += record(p, 0, core_of(p));
    return all;
}

TEST(TopologyByCpuinfo, CountsTheCoresOfTheProcessorsInTheMask) {
    // The second threads come after all first ones.
    std::string smt = records(8, [](int p) { return p % 4; }), two_packages, large, plain, partly;
    for (int p = 0; p < 8; ++p) {
        two_packages += record(p, p / 4, p % 4);
        plain += plain_record(p);
        partly += p < 4 ? record(p, 0, p / 2) : plain_record(p);
    }
    for (int p = 0; p < 1024; ++p)
        large += record(p, p / 256, p % 128);
    std::string junk = "processor\nprocessor:\nprocessor : x\ncore id : 7\nphysical id\t: -3\n"
                       "processor : 99999999999999999999\nprocessor\t: 1x\n: \n\n\n";
    junk += std::string(100000, '\xff') + "\n" + std::string(5000, '\0') + "\nprocessor id : 3\n";

    const struct {
        const char *name;
        std::string text;
        std::vector<int> mask;
        int cores, threads_per_core;
        core_source source;
    } cases[] = {
        {"threads", smt, first(8), 4, 2, core_source::cpuinfo},
        {"both threads of core 1, one of core 2", smt, {1, 5, 6}, 2, 2, core_source::cpuinfo},
        {"packages", two_packages, first(8), 8, 1, core_source::cpuinfo},
        {"core 0 of each package", two_packages, {0, 4}, 2, 1, core_source::cpuinfo},
        {"1024 processors", large, first(1024), 512, 2, core_source::cpuinfo},
        {"no fields", plain, first(8), 8, 1, core_source::none},
        {"fields for some", partly, first(8), 6, 2, core_source::none},
        {"processors it does not list", smt, {0, 4, 100, 8191}, 3, 2, core_source::cpuinfo},
        {"every record twice", smt + smt, first(8), 4, 2, core_source::cpuinfo},
        {"no line end at the end", "processor\t: 0", {0, 1}, 2, 1, core_source::none},
        {"empty", "", {0, 3}, 2, 1, core_source::none},
        {"junk", junk, {0, 1, 3}, 3, 1, core_source::none},
        {"junk around records", junk + smt + junk, first(8), 4, 2, core_source::cpuinfo},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const cpuinfo_file file(c.text);
        synthetic s{{}, mask_of(c.mask)};
        expect(find(s, false, file.path()), int(c.mask.size()), c.cores, c.threads_per_core,
               c.source);
        EXPECT_EQ(s.moves, 0); // no thread is moved for this source
    }
    synthetic s{{}, mask_of(first(6))};
    expect(find(s, false, "/nonexistent"), 6, 6, 1, core_source::none);
}

TEST(TopologyByCpuinfo, ListsTheProcessorsWhenTheMaskIsUnknown) {
    const cpuinfo_file file(records(8, [](int p) { return p % 4; }));
    synthetic s{{}, mask_of({0})};
    expect(find(s, true, file.path(), false), 8, 4, 2, core_source::cpuinfo);
    expect(find(s, false, "/nonexistent", false), 1, 1, 1, core_source::none);
}

TEST(TopologyByVisits, TurnsToCpuinfoWhereCpuidDoesNotTell) {
    const cpuinfo_file file(records(300, [](int p) { return p / 3; }));
    std::vector<apic_reading> wide = packages(1, 300, 512, 1); // identifiers of 8 bits repeat
    for (apic_reading &r : wide)
        r.logical_per_package = r.cores_per_package = 32;
    const struct {
        const char *name;
        std::vector<apic_reading> apic;
        int processors, refused_processor;
    } cases[] = {
        {"identifiers repeat", wide, 300, -1},
        {"more cores than leaf 4 can say", packages(1, 66, 64, 1), 66, -1},
        {"more threads than leaf 1 can say", packages(1, 60, 32, 8), 240, -1},
        {"a processor cannot be visited", packages(1, 9, 16, 1), 9, 6},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        synthetic s{c.apic, mask_of(first(c.processors)), c.refused_processor};
        expect(find(s, true, file.path()), c.processors, c.processors / 3, 3, core_source::cpuinfo);
    }
}

TEST(TopologyWithoutMemory, EachProcessorCountsAsACore) {
    const cpuinfo_file file(records(8, [](int p) { return p / 2; }));
    for (bool visits : {true, false})
        for (int allocations = 0; allocations < (visits ? 3 : 1); ++allocations) {
            synthetic s{packages(1, 4, 4, 2), mask_of(first(8)), -1, allocations};
            expect(find(s, visits, file.path()), 8, 8, 1, core_source::none);
            EXPECT_EQ(s.moves, 0);
        }
}

TEST(ThisTopology, AgreesWithTheSystem) {
    processor_mask mask;
    ASSERT_TRUE(read_affinity(0, mask));
    EXPECT_EQ(vox_serv_get_nlogicalcores(), mask.count());
    EXPECT_GE(vox_serv_get_ncpus(), 1);
    EXPECT_LE(vox_serv_get_ncpus(), vox_serv_get_nlogicalcores());
    EXPECT_GE(vox_serv_get_ncorespercpu() * vox_serv_get_ncpus(), vox_serv_get_nlogicalcores());
    EXPECT_EQ(vox_serv_get_ht(), vox_serv_get_nlogicalcores() != vox_serv_get_ncpus());
}

} // namespace
