// code_paths.hpp - the code paths as a type, made from the one list of them.
#pragma once

#include "serv/code_path_list.hpp"

namespace vox {

#define VOX_PATH_ENUMERATOR(path, ...) path,
enum class code_path { VOX_CODE_PATHS(VOX_PATH_ENUMERATOR) };
#undef VOX_PATH_ENUMERATOR

// The path that every kernel of this process runs on; chosen at the first call.
code_path this_code_path();

// The path of a processor type; reproducible: under a branch of VOX_CBWR.
code_path code_path_for(int type, bool reproducible);

const char *code_path_name(code_path path);

} // namespace vox
