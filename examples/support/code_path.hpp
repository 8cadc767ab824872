// code_path.hpp - the code path that runs this program and, where the vendor test holds the library back,
// the one that VOX_CPU_VENDOR=ANY would give: "def (with VOX_CPU_VENDOR=ANY: avx512)".
#pragma once

#include <string>

std::string code_path();
