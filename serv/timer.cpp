// timer.cpp - see timer.hpp.
//
// The counter is read in some twenty cycles and without a system call, so timing a call hardly
// disturbs it. Its frequency is measured once, against the operating system's clock, over 5 ms:
// that clock counts nanoseconds, so there is no need to wait for a whole second to pass.
//
// A thread may lose the processor between reading one clock and the other. Each reading therefore
// takes the closest of several pairs; the error left is below a microsecond in 5 ms.
#include "serv/timer.hpp"

#include <time.h>
#include <x86intrin.h>

#include "serv/base.hpp"
#include "serv/frequency.hpp"
#include "serv/lock.hpp"

namespace {

using namespace vox;

constexpr double calibration_seconds = 0.005, shortest_seconds = 0.0001;

constinit std::atomic<bool> calibrated;
constinit double ghz;

int64_t clock_nanoseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t(now.tv_sec) * 1000000000 + now.tv_nsec;
}

// Both clocks at one moment.
struct reading {
    int64_t nanoseconds;
    uint64_t ticks;
};

reading read_both() {
    reading best{};
    int64_t narrowest = INT64_MAX;
    for (int i = 0; i < 16; ++i) {
        const int64_t before = clock_nanoseconds();
        const uint64_t ticks = __rdtsc();
        const int64_t after = clock_nanoseconds();
        if (after - before < narrowest) {
            narrowest = after - before;
            best = {before + narrowest / 2, ticks};
        }
    }
    return best;
}

double measured_frequency() {
    const reading start = read_both();
    const int64_t end = start.nanoseconds + int64_t(calibration_seconds * 1e9);
    while (clock_nanoseconds() < end)
        __builtin_ia32_pause();
    const reading stop = read_both();
    return counter_frequency(int64_t(stop.ticks - start.ticks),
                             double(stop.nanoseconds - start.nanoseconds) * 1e-9,
                             rated_frequency(this_processors_frequency()));
}

} // namespace

double vox::counter_frequency(int64_t ticks, double seconds, double rated_ghz) {
    if (seconds >= shortest_seconds && ticks > 0)
        return double(ticks) / seconds * 1e-9;
    return rated_ghz > 0 ? rated_ghz : 1;
}

extern "C" double vox_serv_get_clocks_frequency() {
    once(calibrated, lock_id::timer, [] { ghz = measured_frequency(); });
    return ghz;
}
VOX_ALIAS(vox_get_clocks_frequency, vox_serv_get_clocks_frequency);
VOX_FORTRAN_FORM(double, vox_get_clocks_frequency, VOX_GET_CLOCKS_FREQUENCY, (), ());

extern "C" void vox_serv_get_cpu_clocks(uint64_t *clocks) {
    if (clocks)
        *clocks = __rdtsc();
}
VOX_ALIAS(vox_get_cpu_clocks, vox_serv_get_cpu_clocks);
VOX_FORTRAN_FORM(void, vox_get_cpu_clocks, VOX_GET_CPU_CLOCKS, (uint64_t * clocks), (clocks));

// The frequency comes first: calibration must not count as time that passed after the reading.
extern "C" double vox_serv_dsecnd() {
    const double ticks_per_second = vox_serv_get_clocks_frequency() / 1e-9;
    return double(__rdtsc()) / ticks_per_second;
}
VOX_ALIAS(vox_serv_iface_dsecnd, vox_serv_dsecnd);
VOX_ALIAS(dsecnd, vox_serv_dsecnd);
VOX_ALIAS(dsecnd_, vox_serv_dsecnd);
VOX_ALIAS(DSECND, vox_serv_dsecnd);

extern "C" float vox_serv_second() { return float(vox_serv_dsecnd()); }
