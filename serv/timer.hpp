// timer.hpp - wall-clock time from the processor's time-stamp counter.
#pragma once

#include <stdint.h>

namespace vox {

// The counter's frequency in GHz: `ticks` in `seconds`; when that was no measurement (too short, or
// the counter stood still or went back), the rated frequency; 1 when that is unknown too (0), so
// that nothing is ever divided by zero.
double counter_frequency(int64_t ticks, double seconds, double rated_ghz);

} // namespace vox
