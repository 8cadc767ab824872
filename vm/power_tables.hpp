// power_tables.hpp - the tables behind power.hpp that all code shares: 128 intervals, in memory.
//
// The kernels that read tables from registers have their own, of 16.
#pragma once

namespace vox::vm {

// Of the interval around m: an inverse c of 1 / m with few bits, -log2 c, and -ln c in two parts, of which the
// first is a multiple of 2^-42. Rows begin at m = 0.6875 - 2^-9; the steps are 2^-8, from 1 on 2^-7.
extern "C" __attribute__((visibility("hidden"))) const double vox_vm_power_log[128][4];

// 2^(j/128), from whose exponent j/128 has been taken such that adding n 2^45 to its bits makes 2^(n/128) of it,
// where n mod 128 is j; and the relative error of the rounded 2^(j/128).
extern "C" __attribute__((visibility("hidden"))) const double vox_vm_power_exp[128][2];

} // namespace vox::vm
