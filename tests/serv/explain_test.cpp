// explain_test.cpp - the facts and reasons that vox_explain gives and vox-info prints.
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "tests/support/child.hpp"
#include "tests/support/temporary.hpp"
#include "vox/service.h"

namespace {

using namespace test;

CHILD(explain) {
    vox_explain([](void *, const char *section, const char *key,
                   const char *value) { std::printf("%s/%s\t%s\n", section, key, value); },
                nullptr);
}

std::map<std::string, std::string> facts(const environment &settings) {
    std::istringstream text(run_child(explain, settings).out);
    std::map<std::string, std::string> result;
    for (std::string key, value; std::getline(text, key, '\t') && std::getline(text, value);)
        result[key] = value;
    return result;
}

TEST(Explain, SaysWhichSettingDecidedTheCodePath) {
    const struct {
        environment settings;
        const char *path, *why;
    } cases[] = {
        {{{"VOX_DEBUG_CPU_TYPE", "2"}}, "ssse3", "VOX_DEBUG_CPU_TYPE asks for it"},
        {{{"VOX_CBWR", "COMPATIBLE"}}, "cnr_def", "the reproducibility branch asks for it"},
        {{{"VOX_CPU_VENDOR", "ANY"}, {"VOX_ENABLE_INSTRUCTIONS", "SSE4_2"}},
         "sse42",
         "the instruction ceiling holds it down"},
    };
    for (const auto &c : cases) {
        auto f = facts(c.settings);
        EXPECT_EQ(f["code path/code path"], c.path);
        EXPECT_EQ(f["code path/why"], c.why);
    }
}

// Where the vendor makes no difference, nothing is said.
TEST(Explain, SaysWhatTheVendorTestHoldsBack) {
    if (vox_serv_quarn_cpu_true()) {
        EXPECT_EQ(facts({}).count("code path/with VOX_CPU_VENDOR=ANY"), 0u);
        return;
    }
    for (const environment &settings :
         {environment{}, environment{{"VOX_ENABLE_INSTRUCTIONS", "SSE4_2"}},
          environment{{"VOX_CBWR", "AUTO"}}}) {
        auto f = facts(settings);
        EXPECT_EQ(f["code path/vendor test"], "not passed");
        environment opened = settings;
        opened.emplace_back("VOX_CPU_VENDOR", "ANY");
        auto o = facts(opened);
        const std::string path = o["code path/code path"];
        EXPECT_EQ(f["code path/with VOX_CPU_VENDOR=ANY"],
                  path == f["code path/code path"] ? "" : path);
        EXPECT_EQ(o.count("code path/with VOX_CPU_VENDOR=ANY"), 0u);
    }
    EXPECT_EQ(facts({{"VOX_DEBUG_CPU_TYPE", "0"}}).count("code path/with VOX_CPU_VENDOR=ANY"), 0u);
}

TEST(Explain, SaysWhereThreadCountsComeFrom) {
    auto f = facts({{"VOX_DYNAMIC", "FALSE"},
                    {"VOX_NUM_THREADS", "3"},
                    {"VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_BLAS=5"}});
    EXPECT_EQ(f["threads/BLAS"].substr(0, 7), "5, from");
    EXPECT_NE(f["threads/BLAS"].find("VOX_DOMAIN_NUM_THREADS"), std::string::npos);
    EXPECT_EQ(f["threads/in general"].substr(0, 7), "3, from");
    EXPECT_NE(f["threads/in general"].find("VOX_NUM_THREADS"), std::string::npos);
    EXPECT_EQ(f["threads/dynamic"], "off");
}

TEST(VoxInfo, PrintsTheFactsAsTextAndAsJson) {
    // A name that JSON has to escape.
    const temporary_directory directory;
    const environment odd = {{"VOX_VERBOSE_OUTPUT_FILE", directory / "a\"b\\c\td"}};
    const child_result text = run_program({VOX_INFO}, odd);
    EXPECT_EQ(text.status, 0);
    EXPECT_NE(text.out.find("code path"), std::string::npos);
    const std::string reader =
        "import json, subprocess\n"
        "facts = json.loads(subprocess.check_output(['" VOX_INFO "', '--json']))\n"
        "print({type(v) for section in facts.values() for v in section.values()} == {str})\n"
        "print(facts['logging']['output'], end='')\n";
    const child_result as_json = run_program({"python3", "-c", reader}, odd);
    EXPECT_EQ(as_json.out, "True\n" + odd[0].second) << as_json.err;
    EXPECT_EQ(run_program({VOX_INFO, "--xml"}).status, 2);
}

} // namespace
