// cpu.hpp - the processor of this process and the settings that steer the choice of its code path.
#pragma once

#include "serv/cpu_choice.hpp"

namespace vox {

cpu_facts this_cpu();
cpu_settings current_cpu_settings();

// What was chosen and why; makes the choice if this is the first call.
cpu_choice chosen_cpu();

// VOX_CPU_VENDOR (or the build's default) opened the vendor test for this processor.
bool vendor_test_open();

// The type that the settings would give if it were open.
int type_with_vendor_test_opened();

// The instruction ceiling in force, a level from 0 to 5; -1 for none.
int instruction_ceiling();

// Prints message 1213 for the type and ends the process.
void unsupported_cpu_type(int type);

} // namespace vox
