// timer_test.cpp - the timer against the operating system's clock, and frequencies from CPUID data.
#include "serv/timer.hpp"

#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "serv/frequency.hpp"
#include "vox/service.h"

namespace {

TEST(Timer, FrequencyIsTicksPerTimeOrElseTheRatedOne) {
    EXPECT_DOUBLE_EQ(vox::counter_frequency(12500000, 0.005, 3.0), 2.5);
    EXPECT_DOUBLE_EQ(vox::counter_frequency(250000, 0.0001, 3.0), 2.5);
    EXPECT_EQ(vox::counter_frequency(249999, 0.0000999, 3.0), 3.0);
    EXPECT_EQ(vox::counter_frequency(0, 0.005, 3.0), 3.0);
    EXPECT_EQ(vox::counter_frequency(-5, 0.005, 3.0), 3.0);
    EXPECT_EQ(vox::counter_frequency(12500000, -1.0, 3.0), 3.0);
    EXPECT_EQ(vox::counter_frequency(0, 0.005, 0.0), 1.0);
}

TEST(Timer, RatedFrequencyComesFromTheLeafThenFromTheBrand) {
    const struct {
        uint32_t leaf16_eax;
        const char *brand;
        double ghz;
    } rows[] = {
        {0, "", 0},
        {0, "Maker Processor 9999 8-Core", 0},
        {0, "Maker(R) CPU E5-2670 0 @ 2.60GHz", 2.60},
        {0, "        Maker(R) CPU       1 @ 933MHz  ", 0.933},
        {0, "Maker(R) @ 1.5THz", 1500},
        {0, "3GHz", 3},
        {0, "Maker @ 2.60 GHz", 0},
        {0, "Maker GHz", 0},
        {0, "Maker 1.2.60GHz", 2.60},
        {0, "Maker @ 48-characters-without-an-end-aaaaaa 1.0GH", 0},
        {2900, "Maker(R) CPU @ 2.60GHz", 2.9},
        {0xFFFF0000, "Maker(R) CPU @ 2.60GHz", 2.60}, // upper half reserved
    };
    for (const auto &r : rows) {
        vox::frequency_facts facts{};
        facts.leaf16.eax = r.leaf16_eax;
        std::memcpy(facts.brand, r.brand, std::min(std::strlen(r.brand), sizeof facts.brand - 1));
        EXPECT_DOUBLE_EQ(vox::rated_frequency(facts), r.ghz) << r.brand;
    }
}

double steady_seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The library's interval lies inside one of the operating system's and around another. The slack is
// the calibration's own: one microsecond at either end of 5 ms.
TEST(Timer, SecondsAreSeconds) {
    constexpr double slack = 2e-6 / 0.005;
    dsecnd(); // calibrates
    const double outer_start = steady_seconds(), start = dsecnd(), inner_start = steady_seconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const double inner_end = steady_seconds(), end = dsecnd(), outer_end = steady_seconds();
    EXPECT_LE(end - start, (outer_end - outer_start) * (1 + slack));
    EXPECT_GE(end - start, (inner_end - inner_start) * (1 - slack));
}

TEST(Timer, AllFormsReadOneClock) {
    double (*const forms[])() = {dsecnd, dsecnd_, DSECND, vox_serv_dsecnd, vox_serv_iface_dsecnd};
    double last = 0;
    for (int repeat = 0; repeat < 100; ++repeat)
        for (auto form : forms) {
            const double now = form();
            EXPECT_GE(now, last);
            last = now;
        }
    const float before = float(dsecnd()), single = vox_serv_second(), after = float(dsecnd());
    EXPECT_LE(before, single);
    EXPECT_LE(single, after);

    uint64_t first = 0, second = 0, third = 0;
    vox_get_cpu_clocks(&first);
    vox_serv_get_cpu_clocks(&second);
    VOX_GET_CPU_CLOCKS(&third);
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    vox_get_cpu_clocks(nullptr);
}

TEST(Timer, FrequenciesAreGigahertz) {
    const double counter = vox_get_clocks_frequency();
    EXPECT_EQ(counter, vox_serv_get_clocks_frequency());
    EXPECT_EQ(counter, vox_get_clocks_frequency_());
    for (double ghz : {counter, vox_get_cpu_frequency(), vox_get_max_cpu_frequency(),
                       VOX_GET_CPU_FREQUENCY(), VOX_GET_MAX_CPU_FREQUENCY()}) {
        EXPECT_GT(ghz, 0.1);
        EXPECT_LT(ghz, 20);
    }
}

} // namespace
