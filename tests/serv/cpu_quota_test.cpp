// cpu_quota_test.cpp - limits of control groups, in trees of files laid out like the kernel's.
#include "serv/cpu_quota.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temporary.hpp"

namespace {

using files = std::vector<std::pair<std::string, std::string>>; // "@" stands for the tree's root

int quota_in(const files &tree) {
    const test::temporary_directory root;
    for (auto [name, text] : tree) {
        for (size_t at; (at = text.find('@')) != std::string::npos;)
            text.replace(at, 1, root.path());
        const std::filesystem::path path = root / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    return vox::read_cpu_quota((root / "cgroup").c_str(), (root / "mountinfo").c_str());
}

constexpr char v2_mount[] = "22 1 0:20 / /proc rw - proc proc rw\n"
                            "30 23 0:27 / @/v2 rw,nosuid shared:9 - cgroup2 cgroup2 rw\n";
constexpr char v1_mounts[] = "31 23 0:28 / @/set rw - cgroup cgroup rw,cpuset\n"
                             "32 23 0:29 / @/cpu rw shared:2 - cgroup cgroup rw,cpu,cpuacct\n";

// A process in a group of the second generation, and cpu.max in directories below its mount.
files second(const std::string &group, const files &limits) {
    files tree = {{"cgroup", "0::" + group + "\n"}, {"mountinfo", v2_mount}};
    for (const auto &[directory, text] : limits)
        tree.emplace_back("v2" + directory + "/cpu.max", text + "\n");
    return tree;
}

TEST(CpuQuota, IsTheLowestOfTheGroupAndItsParents) {
    const struct {
        const char *name;
        files tree;
        int quota;
    } cases[] = {
        {"no files at all", {}, 0},
        {"junk", {{"cgroup", "x\n::\n:\n0:\n"}, {"mountinfo", "- \n  - -\n1 2 3 - cgroup2\n"}}, 0},
        {"second generation", second("/a/b", {{"/a/b", "300000 100000"}}), 3},
        {"rounded up", second("/a", {{"/a", "100001 100000"}}), 2},
        {"less than one processor", second("/a", {{"/a", "1000 100000"}}), 1},
        {"no limit", second("/a", {{"/a", "max 100000"}}), 0},
        {"the parent's is lower",
         second("/a/b/c",
                {{"/a", "250000 100000"}, {"/a/b", "max 100000"}, {"/a/b/c", "800000 100000"}}),
         3},
        {"the root's own file", second("/", {{"", "200000 100000"}}), 2},
        {"nothing above the mount is read", second("/a", {{"/..", "100000 100000"}}), 0},
        {"only the container's own group is mounted",
         {{"cgroup", "0::/docker/1/x\n"},
          {"mountinfo", "30 23 0:27 /docker/1 @/v2 rw - cgroup2 cgroup2 rw\n"},
          {"v2/cpu.max", "500000 100000\n"},
          {"v2/x/cpu.max", "400000 100000\n"}},
         4},
        {"a mount of some other group",
         {{"cgroup", "0::/docker/12\n"},
          {"mountinfo", "30 23 0:27 /docker/1 @/v2 rw - cgroup2 cgroup2 rw\n"},
          {"v2/cpu.max", "500000 100000\n"},
          {"v22/cpu.max", "100000 100000\n"}},
         5},
        {"first generation",
         {{"cgroup", "5:cpuset:/\n4:cpu,cpuacct:/a\n0::/\n"},
          {"mountinfo", v1_mounts},
          {"cpu/a/cpu.cfs_quota_us", "600000\n"},
          {"cpu/a/cpu.cfs_period_us", "100000\n"},
          {"cpu/cpu.cfs_quota_us", "-1\n"},
          {"cpu/cpu.cfs_period_us", "100000\n"}},
         6},
        {"a period is missing",
         {{"cgroup", "4:cpu:/\n"}, {"mountinfo", v1_mounts}, {"cpu/cpu.cfs_quota_us", "600000\n"}},
         0},
        {"both generations, the lower holds",
         {{"cgroup", "4:cpu,cpuacct:/\n0::/\n"},
          {"mountinfo", std::string(v2_mount) + v1_mounts},
          {"v2/cpu.max", "700000 100000\n"},
          {"cpu/cpu.cfs_quota_us", "200000\n"},
          {"cpu/cpu.cfs_period_us", "50000\n"}},
         4},
        {"numbers that are none",
         second("/a/b/c", {{"/a", ""}, {"/a/b", "200000 0"}, {"/a/b/c", "200000"}}), 0},
        {"larger than any number", second("/a", {{"/a", "99999999999999999999999 1"}}), 2147483647},
        {"a path longer than any", second("/" + std::string(100000, 'a'), {}), 0},
    };
    for (const auto &c : cases)
        EXPECT_EQ(quota_in(c.tree), c.quota) << c.name;
}

} // namespace
