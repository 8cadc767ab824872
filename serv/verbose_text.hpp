// verbose_text.hpp - the texts of verbose mode as pure functions of what they show.
#pragma once

#include "serv/text.hpp"
#include "vox/service.h"

namespace vox {

// Everything on the line of a call but the call itself.
struct call_facts {
    double seconds; // 0 or less, and NaN, print as 0
    int branch;     // of reproducibility
    int dynamic;
    int fast_mm;           // 1: scratch buffers are kept
    int thread;            // of the team that made the call
    int threads;           // for no particular domain
    int domain_threads[4]; // from VOX_DOMAIN_BLAS on
};

// Longer call texts are cut, so that a line always ends in its newline.
inline constexpr int longest_call_text = 500;
inline constexpr size_t line_size = 1024;

void add_call_line(text_writer &line, const char *call, const call_facts &facts);

// The line before the first call's. interface_kind: 1 lp64, 2 ilp64, -1 cdecl, -2 stdcall, 0 none.
void add_header_line(text_writer &line, const vox_version &version, double rated_ghz,
                     int interface_kind);

} // namespace vox
