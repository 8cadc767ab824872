// reports.hpp - what the library reports about arguments while a test listens.
#pragma once

#include <string>

#include "vox/service.h"

namespace test {

inline std::string reports; // "NAME:number " each

struct reports_recorded {
    reports_recorded() {
        reports.clear();
        vox_set_xerbla([](const char *name, const vox_int *code, int length) {
            reports += std::string(name, size_t(length)) + ':' + std::to_string(*code) + ' ';
        });
    }
    ~reports_recorded() { vox_set_xerbla(nullptr); }
};

} // namespace test
