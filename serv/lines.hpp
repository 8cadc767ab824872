// lines.hpp - reads a text file of the kernel's line by line, without allocating.
//
// Such files have no bound (cpuinfo of a large machine has megabytes), but the lines of interest
// are short: the rest of a line longer than Max is dropped.
#pragma once

#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <unistd.h>

namespace vox {

// Calls body(line) for each line, terminated and without its end. False when there is no such file.
template <size_t Max, class Body>
bool for_each_line(const char *path, const Body &body) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    char chunk[2048], line[Max + 1];
    size_t length = 0;
    for (ssize_t got; (got = read(file, chunk, sizeof chunk)) > 0 || (got < 0 && errno == EINTR);)
        for (ssize_t i = 0; i < got; ++i) {
            if (chunk[i] == '\n') {
                line[length] = '\0';
                body(line);
                length = 0;
            } else if (length < Max) {
                line[length++] = chunk[i];
            }
        }
    if (length > 0) {
        line[length] = '\0';
        body(line);
    }
    close(file);
    return true;
}

} // namespace vox
