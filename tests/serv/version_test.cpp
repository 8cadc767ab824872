// version_test.cpp - the version record, its text in every kind of buffer, and the processor's
// text.
#include "serv/version.hpp"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"
#include "vox/service.h"

namespace {

using namespace test;

const std::string text = "Quarn(R) Wexdal Version 2018.0.2 Product Build 20180127 for Quarn(R) 64 "
                         "architecture applications";

// What a buffer of the given length holds afterwards, and the bytes around it, which stay.
template <class Fill>
std::string filled(size_t length, Fill fill) {
    std::string memory(length + 2, '#');
    fill(memory.data() + 1, length);
    EXPECT_EQ(memory.front(), '#');
    EXPECT_EQ(memory.back(), '#');
    return memory.substr(1, length);
}

TEST(Version, TextIsCutOrFilledWithBlanks) {
    void (*const forms[])(char *, size_t) = {
        [](char *b, size_t n) { vox_serv_get_version_string(b, int(n)); },
        [](char *b, size_t n) { vox_get_version_string(b, int(n)); },
        vox_get_version_string_,
        VOX_GET_VERSION_STRING,
    };
    for (auto form : forms)
        for (size_t length : {size_t(0), size_t(1), size_t(50), text.size() - 1, text.size(),
                              text.size() + 1, size_t(200), size_t(512), size_t(10000)}) {
            std::string expected = text;
            expected.resize(length, ' ');
            EXPECT_EQ(filled(length, form), expected) << length;
        }
    char untouched = '#';
    vox_serv_get_version_string(&untouched, -1);
    vox_serv_get_version_string(nullptr, 10);
    EXPECT_EQ(untouched, '#');
}

TEST(Version, TextForCIsCutAndTerminated) {
    for (size_t length : {size_t(1), size_t(50), text.size(), text.size() + 1, size_t(200)}) {
        const std::string got =
            filled(length, [](char *b, size_t n) { vox_serv_get_version_string_c(b, int(n)); });
        EXPECT_STREQ(got.c_str(), text.substr(0, length - 1).c_str()) << length;
    }
    filled(0, [](char *b, size_t) { vox_serv_get_version_string_c(b, 0); });
    vox_serv_get_version_string_c(nullptr, 10);
}

TEST(Version, ProcessorTextFollowsTypeAndVendor) {
    const std::string other = "Quarn(R) Architecture processors";
    const std::string avx512 = "Advanced Vector Extensions 512 (Quarn(R) AVX-512)";
    const std::string zel = avx512 + " for Quarn(R) Zel Architecture (Quarn(R) ZEL Architecture)";
    const std::string e1 =
        "Quarn(R) " + zel + " with support of AVX512_4FMAPS and AVX512_4VNNIW instruction groups";
    const auto enabled = [](const std::string &what) {
        return "Quarn(R) " + what + " enabled processors";
    };
    const struct {
        int type;
        bool vendor, e1;
        std::string text;
    } rows[] = {
        {0, true, false, enabled("Streaming SIMD Extensions 2 (Quarn(R) SSE2)")},
        {1, true, false, other},
        {2, true, false, enabled("Supplemental Streaming SIMD Extensions 3 (Quarn(R) SSSE3)")},
        {3, true, false, enabled("Streaming SIMD Extensions 4.2 (Quarn(R) SSE4.2)")},
        {4, true, false, enabled("Advanced Vector Extensions (Quarn(R) AVX)")},
        {5, true, false, enabled("Advanced Vector Extensions 2 (Quarn(R) AVX2)")},
        {6, true, false, enabled(zel)},
        {6, true, true, e1},
        {7, true, true, enabled(avx512)},
        {8, true, false, e1},
        {9, true, false, other},
        {5, false, false, other},
        {6, false, true, other},
    };
    for (const auto &r : rows)
        EXPECT_EQ(vox::processor_description(r.type, r.vendor, r.e1), r.text) << r.type;
}

CHILD(print_version) {
    vox_version v;
    vox_serv_get_version(&v);
    std::printf("%d.%d.%d|%s|%s|%s|%s", v.major_version, v.minor_version, v.update,
                v.product_status, v.build, v.platform, v.processor);
}
TEST(Version, TheRecordDescribesTheChosenPath) {
    const std::string front = "2018.0.2|Product|20180127|Quarn(R) 64 architecture|";
    const std::string other = "Quarn(R) Architecture processors";
    const std::string ssse3 =
        "Quarn(R) Supplemental Streaming SIMD Extensions 3 (Quarn(R) SSSE3) enabled processors";
    EXPECT_EQ(run_child(print_version, {{"VOX_CBWR", "SSSE3"}}).out, front + ssse3);
    EXPECT_EQ(run_child(print_version, {{"VOX_CBWR", "COMPATIBLE"}}).out, front + other);
    // A debug type changes the path, not the maker.
    EXPECT_EQ(run_child(print_version, {{"VOX_DEBUG_CPU_TYPE", "2"}}).out,
              front + (vox_serv_quarn_cpu_true() ? ssse3 : other));
    // The first call settles a bad branch, and already knows it.
    EXPECT_EQ(run_child(print_version, {{"VOX_CBWR", "bad"}}).out,
              run_child(print_version, {{"VOX_CBWR", "AUTO"}}).out);
    vox_get_version(nullptr);
}

} // namespace
