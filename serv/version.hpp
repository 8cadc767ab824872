// version.hpp - what the version record says about the processor.
#pragma once

namespace vox {

// type: of the chosen code path. e1: of the E1 kind, for the type of the many-core processors.
const char *processor_description(int type, bool supported_vendor, bool e1);

} // namespace vox
