// peak.hpp - what the processor's arithmetic units can do at most, for level 3 to be measured by.
#pragma once

namespace peers {

// Operations per second of one thread that multiplies and adds in registers only, with the widest
// vectors of a code path of this library and with fused multiply-adds where the path has them; now:
// clocks drift, so this is to be asked next to what is compared with it.
double peak_flops(int path, bool is_double);

} // namespace peers
