// verbose_output.hpp - where the lines of verbose mode go: standard output, or a file by name.
#pragma once

#include <stddef.h>

namespace vox {

// Writes one whole line, so that lines of several threads and processes never mix. A file is opened
// for every line: it may be moved away or removed at any time.
void write_verbose_line(const char *line, size_t length);

} // namespace vox
