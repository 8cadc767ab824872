// instructions.hpp - whether the processor has the instructions that a generator cannot do without.
#pragma once

#include "serv/cpu_features.hpp"

namespace vox::rng {

bool has_instructions(feature::bit bit);
bool has_vaes(); // AES on wide vectors, which the feature word says nothing of

// Features that generators may use if the processor has them: all, unless a test takes some away.
extern uint64_t allowed_features;
inline constexpr uint64_t allowed_vaes = uint64_t(1) << 63; // a bit without a feature

} // namespace vox::rng
