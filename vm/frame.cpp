// frame.cpp - see frame.hpp.
#include "vm/frame.hpp"

#include <string.h>

#include "vox/service.h"

namespace {
constexpr size_t longest_name = 25;
}

void vox::vm::report_argument(const char *name, vox_int position, int status, vox_int count) {
    vox_serv_xerbla(name, &position, int(strnlen(name, longest_name)));
    report_call(status, count, name);
}
