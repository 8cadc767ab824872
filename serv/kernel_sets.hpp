// kernel_sets.hpp - the kernel sets of random streams and vector mathematics: finer steps than the code
// paths, counted from 0 to 9.
//
//   0, 2  def        baseline; 2 where there is SSE3, which changes nothing
//   1     cnr_def    the baseline's copy for reproducible results
//   3     ssse3      4  sse41      5  sse42      6  avx      7  avx2
//   8     avx512_zel 9  avx512
//
// The set follows the processor type where that is above 0, or where a debug type or a reproducibility
// branch asked for it. These families do not share the others' vendor test: where that alone holds the type
// at 0, the set follows what the processor has, under the same ceiling.
#pragma once

#include "serv/code_path_list.hpp"
#include "serv/cpu_choice.hpp"

namespace vox {

#define VOX_SET_ENUMERATOR(set, ...) set,
enum class kernel_set { VOX_KERNEL_SETS(VOX_SET_ENUMERATOR) };
#undef VOX_SET_ENUMERATOR

// choice: what choose_cpu said for these facts and settings.
int kernel_index_of(const cpu_facts &facts, const cpu_settings &settings, const cpu_choice &choice);
kernel_set kernel_set_of(int index);
bool kernel_index_runs(const cpu_facts &facts,
                       int index); // whether the processor has what it needs

// Those of this process; chosen at the first call.
int this_kernel_index();
kernel_set this_kernel_set();

} // namespace vox
