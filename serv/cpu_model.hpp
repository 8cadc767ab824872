// cpu_model.hpp - which generation a processor is of. For tuning only: features decide what may
// run.
#pragma once

#include "serv/base.hpp"
#include "serv/cpu_features.hpp"

namespace vox {

// One of the VOX_UARCH_ identifiers: by family and model for makers whose models differ in ways
// that features do not show, by features for everyone else, so that an unknown model gets the best
// fit.
int microarchitecture_of(const cpu_snapshot &snapshot);

// A short name for an identifier ("zen4").
const char *microarchitecture_name(int identifier);

} // namespace vox
