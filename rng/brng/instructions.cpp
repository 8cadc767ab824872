// instructions.cpp - see instructions.hpp.
#include "rng/brng/instructions.hpp"

constinit uint64_t vox::rng::allowed_features = ~uint64_t(0);

bool vox::rng::has_instructions(feature::bit bit) {
    return has(features() & allowed_features, bit);
}

bool vox::rng::has_vaes() {
    return (allowed_features & allowed_vaes) && this_processor().leaf7.ecx >> 9 & 1;
}
