// version.cpp - the version record and its text. The numbers are the build's (project() in
// CMakeLists.txt).
#include "serv/version.hpp"

#include <string.h>

#include "serv/base.hpp"
#include "vox/service.h"

#define TEXT_OF(number) TEXT_OF_1(number)
#define TEXT_OF_1(number) #number
#define NUMBER                                                                                     \
    TEXT_OF(VOX_VERSION_MAJOR) "." TEXT_OF(VOX_VERSION_MINOR) "." TEXT_OF(VOX_VERSION_UPDATE)
#define STATUS "Product"
#define BUILD "20180127"
#define PLATFORM "Quarn(R) 64 architecture"

namespace {

constexpr char version_text[] =
    "Quarn(R) Wexdal Version " NUMBER " " STATUS " Build " BUILD " for " PLATFORM " applications";
constexpr size_t version_length = sizeof version_text - 1;

// Copies what fits and returns how much that was.
size_t copy_version(char *buffer, size_t room) {
    const size_t length = version_length < room ? version_length : room;
    memcpy(buffer, version_text, length);
    return length;
}

void fill_version(char *buffer, size_t room) {
    if (!buffer)
        return;
    const size_t length = copy_version(buffer, room);
    memset(buffer + length, ' ', room - length);
}

} // namespace

// A switch, not a table: a table of addresses costs relocations at load.
const char *vox::processor_description(int type, bool supported_vendor, bool e1) {
    switch (supported_vendor ? type : -1) {
    case VOX_CPU_DEF:
        return "Quarn(R) Streaming SIMD Extensions 2 (Quarn(R) SSE2) enabled processors";
    case VOX_CPU_SSSE3:
        return "Quarn(R) Supplemental Streaming SIMD Extensions 3 (Quarn(R) SSSE3) enabled "
               "processors";
    case VOX_CPU_SSE42:
        return "Quarn(R) Streaming SIMD Extensions 4.2 (Quarn(R) SSE4.2) enabled processors";
    case VOX_CPU_AVX:
        return "Quarn(R) Advanced Vector Extensions (Quarn(R) AVX) enabled processors";
    case VOX_CPU_AVX2:
        return "Quarn(R) Advanced Vector Extensions 2 (Quarn(R) AVX2) enabled processors";
    case VOX_CPU_AVX512_ZEL:
        if (!e1)
            return "Quarn(R) Advanced Vector Extensions 512 (Quarn(R) AVX-512) for Quarn(R) Zel "
                   "Architecture (Quarn(R) ZEL Architecture) enabled processors";
        [[fallthrough]];
    case VOX_CPU_AVX512_ZEL_E1:
        return "Quarn(R) Advanced Vector Extensions 512 (Quarn(R) AVX-512) for Quarn(R) Zel "
               "Architecture (Quarn(R) ZEL Architecture) with support of AVX512_4FMAPS and "
               "AVX512_4VNNIW instruction groups";
    case VOX_CPU_AVX512:
        return "Quarn(R) Advanced Vector Extensions 512 (Quarn(R) AVX-512) enabled processors";
    default:
        return "Quarn(R) Architecture processors";
    }
}

extern "C" void vox_serv_get_version(vox_version *version) {
    if (!version)
        return;
    version->major_version = VOX_VERSION_MAJOR;
    version->minor_version = VOX_VERSION_MINOR;
    version->update = VOX_VERSION_UPDATE;
    version->product_status = STATUS;
    version->build = BUILD;
    const int type =
        vox_serv_cpu_detect(); // first: it settles the branch that the vendor test sees
    version->processor =
        vox::processor_description(type, vox_serv_quarn_cpu(), vox_serv_cpu_is_zel_e1());
    version->platform = PLATFORM;
}
VOX_ALIAS(vox_get_version, vox_serv_get_version);

extern "C" void vox_serv_get_version_string(char *buffer, int length) {
    fill_version(buffer, length > 0 ? size_t(length) : 0);
}
VOX_ALIAS(vox_get_version_string, vox_serv_get_version_string);

extern "C" void vox_get_version_string_(char *buffer, size_t length) {
    fill_version(buffer, length);
}
VOX_ALIAS(VOX_GET_VERSION_STRING, vox_get_version_string_);

extern "C" void vox_serv_get_version_string_c(char *buffer, int length) {
    if (buffer && length > 0)
        buffer[copy_version(buffer, size_t(length) - 1)] = '\0';
}
